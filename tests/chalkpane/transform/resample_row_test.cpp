#include "chalkpane/transform/resample_row.h"

#include <doctest/doctest.h>

#include <cmath>
#include <vector>

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/transform/resample_inner.h"
#include "chalkpane/transform/transformer.h"
#include "tests/chalkpane/composite/paste_fixture.h"
#include "tests/reference/resampling.h"

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace chalkpane {

namespace {

double Uniform(std::mt19937& random, double low, double high) {
    return low + (high - low) * (static_cast<double>(random()) / 4294967295.0);
}

Matrix3 RandomMatrix(std::mt19937& random) {
    const double scale = std::exp(Uniform(random, -1.5, 1.5));
    switch (random() % 4) {
        case 0:
            return Matrix3::Translation(Uniform(random, -9, 9), Uniform(random, -9, 9));
        case 1:
            return Matrix3::Scaling(scale, -scale) * Matrix3::Translation(Uniform(random, -9, 9), 11.3);
        default:
            return Matrix3::Translation(-20.0, -20.0) * Matrix3::Scaling(scale, Uniform(random, 0.3, 2.0)) *
                   Matrix3::Rotation(Uniform(random, -4.0, 4.0)) *
                   Matrix3::Translation(Uniform(random, 10, 30), Uniform(random, 10, 30));
    }
}

}  // namespace

TEST_CASE("resampling agrees with the plain reference") {
    std::mt19937 random(77);
    for (std::uint32_t i = 0; i < 600; ++i) {
        const Depth depth = DepthOf(static_cast<std::int32_t>(i % 2));
        const PixelType type = i / 2 % 2 == 0 ? PixelType::Colour : PixelType::Mask;
        const Image source = NoiseImage(RandomRect(random), type, depth, i);
        Image target = NoiseImage({0, 0, 39, 36}, type, depth, i + 1);
        const Rect rect = RandomRect(random);
        const Rect sourceLimit = RandomRect(random);
        const Rect targetLimit = RandomRect(random);
        Transformer transformer;
        transformer.SetMatrix(RandomMatrix(random));
        Rect area = source;
        Rect wanted = rect;
        if (i % 3 == 1) {
            transformer.LimitSource(sourceLimit);
            area = area.Intersection(sourceLimit);
        }
        if (i % 5 == 1) {
            transformer.LimitTarget(targetLimit);
            wanted = wanted.Intersection(targetLimit);
        }
        reference::Picture picture(target);
        if (area.IsValid() && wanted.IsValid())
            reference::ResampleInto(reference::Picture(source), area, transformer.Inverse(), wanted, picture);
        transformer.ApplyInto(source, target, rect);
        CAPTURE(i);
        CHECK(SamePixels(target, picture));
    }
}

// The smallest rectangle of pixel centres that the faded source reaches, found by looking everywhere.
TEST_CASE("the bounds of a rotated image hold all of it and no more") {
    std::mt19937 random(78);
    for (int i = 0; i < 60; ++i) {
        const Image source = Image::Mask(
            {3, -2, 3 + static_cast<int>(random() % 20), -2 + static_cast<int>(random() % 20)}, Depth::Eight);
        Transformer transformer;
        transformer.SetTransform(5.0, 5.0, Uniform(random, 4, 6), Uniform(random, 4, 6), 1.0, 1.0,
                                 Uniform(random, 1.0, 359.0));
        Rect wanted;
        for (int y = -60; y <= 60; ++y)
            for (int x = -60; x <= 60; ++x) {
                const Point2 at = transformer.Inverse().Transform(x + 0.5, y + 0.5);
                if (at.x > source.x0 - 0.499 && at.x < source.x1 + 1.499 && at.y > source.y0 - 0.499 &&
                    at.y < source.y1 + 1.499)
                    wanted.ExtendTo(x, y);
            }
        Rect rect;
        const auto result = transformer.Apply(source, rect);
        CAPTURE(i);
        CHECK(rect == wanted);
        CHECK(result->Bounds() == wanted);
    }
}

// Every sum of valid neighbours is at most 16383 * 65536; the words above it come from pictures beyond full scale.
TEST_CASE("the whole-number form of the 14-bit quotient is the one in floating point") {
    const auto wanted = [](double sum) { return std::min(16383, static_cast<int>(sum / 65535.0 + 0.5)); };
    for (std::uint64_t sum = 0; sum <= 65535ULL * 65536; sum += 997)
        if (FinishSum<PixelFormat14>(static_cast<std::uint32_t>(sum)) != wanted(static_cast<double>(sum))) FAIL(sum);
    for (std::uint64_t step = 0; step <= 16384; ++step)  // around each change of the result
        for (std::uint64_t sum = step * 65535 + 32760; sum < step * 65535 + 32776; ++sum)
            if (FinishSum<PixelFormat14>(static_cast<std::uint32_t>(sum)) != wanted(static_cast<double>(sum)))
                FAIL(sum);
}

#if defined(__x86_64__)
TEST_CASE_TEMPLATE("the vector forms of resampling are equal to the plain ones", Format, PixelFormat8, PixelFormat14) {
    if (!HasAvx2()) return;
    using Channel = typename Format::Channel;
    std::mt19937 random(79);
    for (std::uint32_t i = 0; i < 4000; ++i) {
        const std::int32_t channels = i % 2 == 0 ? 1 : 4;
        const Image image = NoiseImage({0, 0, static_cast<int>(random() % 60), static_cast<int>(random() % 9)},
                                       channels == 1 ? PixelType::Mask : PixelType::Colour,
                                       Format::bits == 8 ? Depth::Eight : Depth::Fourteen, i);
        const ResampleSource<Channel> source{reinterpret_cast<const Channel*>(image.Address(0, 0)),
                                             -image.rowBytes / static_cast<std::ptrdiff_t>(sizeof(Channel)), image};
        const auto position = [&](double low, double high) { return reference::Fixed(Uniform(random, low, high)); };
        ResampleIterator iterator{position(-9, 60), position(-3, 9), position(-2, 2), position(-0.2, 0.2)};
        if (i % 3 == 0) iterator.stepU = 65536;
        if (i % 3 == 0) iterator.stepV = 0;
        const std::size_t count = random() % 90;
        std::vector<Channel> plain(count * static_cast<std::size_t>(channels), Channel{9});
        std::vector<Channel> vector = plain;
        const auto rows = ResampleRowFor<Format>(channels);
        REQUIRE((rows.vector != nullptr));
        CHECK((rows.Fastest() == rows.vector));
        rows.plain(source, iterator, plain.data(), static_cast<std::ptrdiff_t>(count));
        rows.vector(source, iterator, vector.data(), static_cast<std::ptrdiff_t>(count));
        CAPTURE(i);
        CHECK(plain == vector);
    }
}
#endif

#if defined(__x86_64__) && defined(__linux__)
// The picture fills whole pages between two that may not be touched.
TEST_CASE("the vector forms of resampling read nothing beside the picture") {
    if (!HasAvx2()) return;
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    auto* pages =
        static_cast<std::uint8_t*>(mmap(nullptr, 3 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    REQUIRE(pages != MAP_FAILED);
    REQUIRE(mprotect(pages, page, PROT_NONE) == 0);
    REQUIRE(mprotect(pages + 2 * page, page, PROT_NONE) == 0);
    std::mt19937 random(80);
    for (const std::ptrdiff_t channels : {1, 4}) {
        const std::ptrdiff_t width = 16;
        const std::ptrdiff_t height = static_cast<std::ptrdiff_t>(page) / (width * channels);
        const Rect area(0, 0, 15, static_cast<std::int32_t>(height) - 1);
        const std::uint8_t* lowestRow = pages + 2 * page - width * channels;
        const ResampleSource<std::uint8_t> source{lowestRow, -width * channels, area};
        const auto rows = ResampleRowFor<PixelFormat8>(static_cast<std::int32_t>(channels));
        for (int i = 0; i < 2000; ++i) {
            const bool atTop = i % 2 == 0;
            const ResampleIterator iterator{
                reference::Fixed(Uniform(random, -4, 4)),
                reference::Fixed(atTop ? static_cast<double>(height) - Uniform(random, 0, 3) : Uniform(random, -1, 2)),
                reference::Fixed(Uniform(random, 0.2, 1.2)), 0};
            std::vector<std::uint8_t> target(static_cast<std::size_t>(64 * channels));
            rows.vector(source, iterator, target.data(), 64);
        }
    }
    munmap(pages, 3 * page);
}
#endif

}  // namespace chalkpane
