#include "chalkpane/composite/blending_modes.h"
#include "chalkpane/composite/blend_formulas.h"
#include "tests/chalkpane/scoped_cpu_features.h"

#include <doctest/doctest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <type_traits>
#include <vector>

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/base/random.h"
#include "tests/reference/blending.h"

using namespace chalkpane;
using chalkpane::test::ScopedCpuFeatures;

namespace {

template <typename F>
constexpr bool deep = F::bits == 14;

template <typename F>
using Row = std::vector<typename F::Channel>;

template <typename F>
reference::Channels PixelOf(const Row<F>& row, std::size_t pixel) {
    return {row[4 * pixel], row[4 * pixel + 1], row[4 * pixel + 2], row[4 * pixel + 3]};
}

template <typename F>
Row<F> Blended(std::int32_t mode, const Row<F>& source, const Row<F>& destination) {
    Row<F> output(destination.size());
    const auto count = static_cast<std::int32_t>(source.size() / 4);
    if constexpr (deep<F>)
        BlendRow14(count, mode, source, destination, output);
    else
        BlendRow8(count, mode, source, destination, output);
    return output;
}

// One colour channel; alpha of the source is full, of the destination half.
template <typename F>
int BlendedChannel(std::int32_t mode, int s, int d) {
    using Channel = typename F::Channel;
    const auto full = static_cast<Channel>(F::fullScale);
    const auto source = static_cast<Channel>(s);
    const auto destination = static_cast<Channel>(d);
    const auto output = Blended<F>(mode, {source, source, source, full}, {destination, destination, destination, 77});
    CHECK_EQ(output[0], output[1]);
    CHECK_EQ(output[0], output[2]);
    CHECK_EQ(output[3], full);
    return output[0];
}

template <typename F>
Row<F> NoiseRow(std::size_t pixels, std::uint32_t seed) {
    std::mt19937 random(seed);
    Row<F> row(4 * pixels);
    for (auto& channel : row) {
        // Both ends and the middle come often: that is where the formulas turn.
        const std::uint32_t kind = random() % 8;
        const std::uint32_t value = random() % (F::fullScale + 1);
        channel = static_cast<typename F::Channel>(kind == 0   ? 0
                                                   : kind == 1 ? F::fullScale
                                                   : kind == 2 ? F::fullScale / 2 + value % 2
                                                               : value);
    }
    return row;
}

template <typename F>
void CheckAgainstReference(std::int32_t mode, const Row<F>& source, const Row<F>& destination, const Row<F>& output,
                           reference::Generator random) {
    for (std::size_t pixel = 0; pixel < source.size() / 4; ++pixel) {
        const auto s = PixelOf<F>(source, pixel);
        const auto d = PixelOf<F>(destination, pixel);
        const auto wanted = reference::BlendPixel(mode, s, d, deep<F>, random);
        const auto got = PixelOf<F>(output, pixel);
        if (wanted == got) continue;
        CAPTURE(F::bits);
        CAPTURE(mode);
        CAPTURE(pixel);
        for (std::size_t i = 0; i < 4; ++i) {
            CAPTURE(s[i]);
            CAPTURE(d[i]);
            CHECK_EQ(got[i], wanted[i]);
        }
        return;
    }
}

// Every pair of two 8-bit channels, three pairs a pixel, alphas in passing.
struct AllPairs {
    Row<PixelFormat8> source;
    Row<PixelFormat8> destination;

    AllPairs() {
        std::uint32_t pair = 0;
        while (pair < 65536 + 2)
            for (int i = 0; i < 4; ++i) {
                const std::uint32_t value = i == 3 ? pair * 7 : pair++;
                source.push_back(static_cast<std::uint8_t>(value >> 8));
                destination.push_back(static_cast<std::uint8_t>(i == 3 ? value >> 3 : value));
            }
    }
};

template <typename F>
const auto& Kernels() {
    if constexpr (deep<F>)
        return BlendKernels14;
    else
        return BlendKernels8;
}

// Runs all kernels over the rows and compares with the reference.
template <typename F>
void CheckKernels(CpuFeatures features, const Row<F>& source, const Row<F>& destination) {
    const ScopedCpuFeatures scope(features);
    const auto& kernels = Kernels<F>();
    for (std::size_t mode = 0; mode < kernels.size(); ++mode) {
        SeedRandom(4711);
        Row<F> output(source.size());
        kernels[mode](source.data(), destination.data(), output.data(), static_cast<std::int32_t>(source.size() / 4));
        CheckAgainstReference<F>(static_cast<std::int32_t>(mode), source, destination, output, {4711});
    }
}

constexpr std::uint32_t seed = 20240611;

}  // namespace

TEST_CASE("Every pair of 8-bit channels blends as in the plain reference in all 28 modes") {
    const AllPairs pairs;
    CheckKernels<PixelFormat8>(CpuFeatures::Plain, pairs.source, pairs.destination);
}

TEST_CASE("Random 8-bit pixels blend as in the plain reference in all 28 modes") {
    CAPTURE(seed);
    CheckKernels<PixelFormat8>(CpuFeatures::Plain, NoiseRow<PixelFormat8>(100000, seed),
                               NoiseRow<PixelFormat8>(100000, seed + 1));
}

TEST_CASE("Random 14-bit pixels blend as in the plain reference in all 28 modes") {
    CAPTURE(seed);
    CheckKernels<PixelFormat14>(CpuFeatures::Plain, NoiseRow<PixelFormat14>(200000, seed),
                                NoiseRow<PixelFormat14>(200000, seed + 1));
}

TEST_CASE("Wide registers give what the plain kernels give") {
    if (!HasAvx2()) return;
    const AllPairs pairs;
    CheckKernels<PixelFormat8>(CpuFeatures::All, pairs.source, pairs.destination);
    CheckKernels<PixelFormat14>(CpuFeatures::All, NoiseRow<PixelFormat14>(200000, seed + 2),
                                NoiseRow<PixelFormat14>(200000, seed + 3));
}

// At 8 bits all quotients there are; at 14 bits those of a fifth of the channels for each divisor.
TEST_CASE("The quotients of the burning and dodging modes are those of whole numbers") {
    const auto check = [](auto formulas, std::int32_t full, std::int32_t stride) {
        std::int64_t wrong = 0;
        for (std::int32_t divisor = 1; divisor <= full + 1; ++divisor)
            for (std::int32_t channel = divisor % stride; channel <= full; channel += stride) {
                const std::int32_t n = channel * (full + 1);
                wrong += formulas.Quotient(n, divisor) != n / divisor || formulas.Quotient(-n, divisor) != -n / divisor;
            }
        CHECK_EQ(wrong, 0);
    };
    check(blend::ChannelFormulas<blend::Format8>(), 255, 1);
    check(blend::ChannelFormulas<blend::Format14>(), 16383, 5);
}

// Words of all 16 bits: sums and products beyond full scale have defined results, too.
TEST_CASE("Words above full scale blend alike with wide registers and without") {
    std::mt19937 random(seed);
    Row<PixelFormat14> source(40000);
    Row<PixelFormat14> destination(40000);
    for (auto* row : {&source, &destination})
        for (auto& word : *row) word = static_cast<std::uint16_t>(random());
    Row<PixelFormat14> plain(source.size());
    Row<PixelFormat14> wide(source.size());
    for (std::size_t mode = 0; mode < static_cast<std::size_t>(blendModeCount); ++mode) {
        CAPTURE(mode);
        for (auto* output : {&plain, &wide}) {
            const ScopedCpuFeatures scope(output == &plain ? CpuFeatures::Plain : CpuFeatures::All);
            SeedRandom(1);
            BlendKernels14[mode](source.data(), destination.data(), output->data(), 10000);
        }
        CHECK((plain == wide));
    }
}

TEST_CASE_TEMPLATE("Rows of any length blend to their end and no further", F, PixelFormat8, PixelFormat14) {
    CAPTURE(seed);
    const auto source = NoiseRow<F>(64, seed + 4);
    const auto destination = NoiseRow<F>(64, seed + 5);
    for (const auto features : {CpuFeatures::Plain, CpuFeatures::All}) {
        const ScopedCpuFeatures scope(features);
        const auto& kernels = Kernels<F>();
        for (std::size_t mode = 0; mode < kernels.size(); ++mode) {
            for (std::int32_t count = -1; count <= 40; ++count) {
                SeedRandom(1);
                reference::Generator random{1};
                Row<F> output(source.size(), 99);
                kernels[mode](source.data(), destination.data(), output.data(), count);
                bool right = true;
                for (std::size_t pixel = 0; pixel < 64; ++pixel) {
                    const auto wanted = static_cast<std::int32_t>(pixel) < count
                                            ? reference::BlendPixel(static_cast<int>(mode), PixelOf<F>(source, pixel),
                                                                    PixelOf<F>(destination, pixel), deep<F>, random)
                                            : reference::Channels{99, 99, 99, 99};
                    right = right && PixelOf<F>(output, pixel) == wanted;
                }
                CAPTURE(mode);
                CAPTURE(count);
                CHECK(right);
            }
        }
    }
}

TEST_CASE_TEMPLATE("The output may be the destination row itself", F, PixelFormat8, PixelFormat14) {
    CAPTURE(seed);
    const auto source = NoiseRow<F>(61, seed + 6);
    const auto destination = NoiseRow<F>(61, seed + 7);
    for (std::int32_t mode = 0; mode < blendModeCount; ++mode) {
        CAPTURE(mode);
        SeedRandom(9);
        const auto apart = Blended<F>(mode, source, destination);
        SeedRandom(9);
        auto row = destination;
        if constexpr (deep<F>)
            BlendRow14(61, mode, source, row, row);
        else
            BlendRow8(61, mode, source, row, row);
        CHECK(row == apart);
    }
}

TEST_CASE_TEMPLATE("A row shorter than the count bounds the work", F, PixelFormat8, PixelFormat14) {
    const Row<F> source(4 * 3, 5);
    const Row<F> destination(4 * 3, 6);
    Row<F> output(4 * 2 + 3, 0);
    if constexpr (deep<F>)
        BlendRow14(1000, 0, source, destination, output);
    else
        BlendRow8(1000, 0, source, destination, output);
    CHECK(output == Row<F>{5, 5, 5, 5, 5, 5, 5, 5, 0, 0, 0});
}

TEST_CASE_TEMPLATE("A mode beyond the table is the first mode", F, PixelFormat8, PixelFormat14) {
    const auto source = NoiseRow<F>(5, seed);
    const auto destination = NoiseRow<F>(5, seed + 1);
    for (const std::int32_t mode : {blendModeCount, 255, -1}) CHECK(Blended<F>(mode, source, destination) == source);
}

TEST_CASE("14-bit words above full scale blend to something") {
    std::mt19937 random(seed);
    Row<PixelFormat14> source(4 * 4000);
    Row<PixelFormat14> destination(4 * 4000);
    for (std::size_t i = 0; i < source.size(); ++i) {
        source[i] = static_cast<std::uint16_t>(random());
        destination[i] = static_cast<std::uint16_t>(i % 5 == 0 ? 16384 : random());
    }
    for (std::int32_t mode = 0; mode < blendModeCount; ++mode) {
        const auto output = Blended<PixelFormat14>(mode, source, destination);
        CHECK_EQ(output.size(), source.size());
    }
    // The divisor 16384 - d would be 0.
    CHECK_EQ(BlendedChannel<PixelFormat14>(10, 3, 16384), 16383);
}
