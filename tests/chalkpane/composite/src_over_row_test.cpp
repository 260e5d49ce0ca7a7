#include "chalkpane/composite/src_over_row.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/composite/erase_row.h"
#include "chalkpane/composite/src_over_row14.h"
#include "tests/chalkpane/scoped_cpu_features.h"

// The vector forms of the two most used rows against the plain ones.
namespace chalkpane {

#if defined(__x86_64__)
namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr std::size_t pairs = 65536;

struct SrcOverRow {
    Bytes target = Bytes(4 * pairs);
    Bytes source = Bytes(4 * pairs);
    Bytes mask = Bytes(pairs);
};

void CompareOver(const SrcOverRow& row, std::int32_t opacity) {
    Bytes plain = row.target;
    SrcOverRow8Plain(plain.data(), row.source.data(), row.mask.data(), 1, pairs, opacity);
    for (const CpuFeatures features : {CpuFeatures::Avx2, CpuFeatures::All}) {
        const test::ScopedCpuFeatures used(features);
        Bytes vector = row.target;
        SrcOverRow8(vector.data(), row.source.data(), row.mask.data(), 1, pairs, opacity);
        const auto difference = std::ranges::mismatch(plain, vector).in1 - plain.begin();
        CAPTURE(static_cast<int>(features));
        CAPTURE(opacity);
        CAPTURE(difference);
        CHECK(plain == vector);
    }
}

}  // namespace

TEST_CASE("the vector forms of the src_over row are equal for all source and target channels") {
    std::mt19937 random(1);
    SrcOverRow row;
    for (std::size_t i = 0; i < pairs; ++i)
        for (std::size_t c = 0; c < 3; ++c) {
            row.source[4 * i + c] = static_cast<std::uint8_t>(i >> 8);
            row.target[4 * i + c] = static_cast<std::uint8_t>(i);
        }
    for (std::int32_t opacity = 0; opacity < 256; opacity += 3) {
        for (std::size_t i = 0; i < pairs; ++i) {
            // Opaque pixels next to each other have a way of their own.
            row.source[4 * i + 3] = i % 128 < 64 ? 255 : static_cast<std::uint8_t>(random());
            row.target[4 * i + 3] = static_cast<std::uint8_t>(random());
            row.mask[i] = static_cast<std::uint8_t>(random());
        }
        CompareOver(row, opacity);
    }
}

TEST_CASE("the vector forms of the src_over row are equal for all masks and alphas") {
    std::mt19937 random(2);
    SrcOverRow row;
    for (std::size_t i = 0; i < pairs; ++i) {
        for (std::size_t c = 0; c < 4; ++c) {
            row.source[4 * i + c] = static_cast<std::uint8_t>(random());
            row.target[4 * i + c] = static_cast<std::uint8_t>(random());
        }
        row.source[4 * i + 3] = static_cast<std::uint8_t>(i >> 8);
        row.mask[i] = static_cast<std::uint8_t>(i);
    }
    for (std::int32_t opacity = 0; opacity < 256; ++opacity) CompareOver(row, opacity);
}

// Every length of the tail, at every alignment, with a guard behind.
TEST_CASE("the vector forms keep inside their row") {
    if (!HasAvx2()) return;
    std::mt19937 random(3);
    for (std::size_t count = 0; count < 40; ++count) {
        for (std::size_t start = 0; start < 4; ++start) {
            Bytes source(4 * count);
            Bytes mask(count);
            Bytes target(4 * (start + count) + 64);
            for (auto* bytes : {&source, &mask, &target})
                for (auto& byte : *bytes) byte = static_cast<std::uint8_t>(random());
            Bytes plain = target;
            Bytes vector = target;
            const auto pixels = static_cast<std::ptrdiff_t>(count);
            CAPTURE(count);
            SrcOverRow8Plain(plain.data() + 4 * start, source.data(), mask.data(), 1, pixels, 200);
            for (const CpuFeatures features : {CpuFeatures::Avx2, CpuFeatures::All}) {
                const test::ScopedCpuFeatures used(features);
                vector = target;
                SrcOverRow8(vector.data() + 4 * start, source.data(), mask.data(), 1, pixels, 200);
                CHECK(plain == vector);
            }
            EraseRow8Plain(plain.data() + 4 * start, mask.data(), 1, pixels, 200);
            EraseRow8Avx2(vector.data() + 4 * start, mask.data(), pixels, 200);
            CHECK(plain == vector);
        }
    }
}

// All widths of a small dab, over rows that are apart in both images, the target's from bottom to top.
TEST_CASE("the vector forms of a block of one colour are equal, and keep inside the block") {
    std::mt19937 random(7);
    for (std::ptrdiff_t width = 1; width < 44; ++width) {
        for (const std::ptrdiff_t height : {1, 2, 3, 8}) {
            const std::ptrdiff_t targetStep = 4 * width + 12;
            Bytes target(static_cast<std::size_t>(targetStep * height + 64));
            Bytes mask(static_cast<std::size_t>((width + 3) * height));
            for (auto* bytes : {&target, &mask})
                for (auto& byte : *bytes) byte = random() % 3 == 0 ? 0 : static_cast<std::uint8_t>(random());
            ColourBlock8 block{.targetStep = -targetStep,
                               .mask = mask.data(),
                               .maskStep = width + 3,
                               .width = width,
                               .height = height,
                               .pixel = 0xff000000U | static_cast<std::uint32_t>(random()),
                               .opacity = static_cast<std::int32_t>(random() % 256)};
            CAPTURE(width);
            CAPTURE(height);
            const auto made = [&](CpuFeatures features) {
                const test::ScopedCpuFeatures used(features);
                Bytes bytes = target;
                block.target = bytes.data() + targetStep * (height - 1) + 8;
                ColourOverBlock8(block);
                return bytes;
            };
            const Bytes plain = made(CpuFeatures::Plain);
            CHECK(made(CpuFeatures::Avx2) == plain);
            CHECK(made(CpuFeatures::All) == plain);
        }
    }
}

// Both ends of the widest register, and sources whose rows are one, as a dab of one colour has them.
TEST_CASE("a block of pixels is what its rows are, and keeps inside the block") {
    std::mt19937 random(9);
    constexpr std::ptrdiff_t height = 3;
    for (std::ptrdiff_t width = 1; width < 52; ++width) {
        for (const std::ptrdiff_t sourceStep : {std::ptrdiff_t{0}, 4 * width + 4}) {
            const std::ptrdiff_t targetStep = 4 * width + 12;
            Bytes target(static_cast<std::size_t>(targetStep * height + 64));
            Bytes source(static_cast<std::size_t>((4 * width + 4) * height));
            Bytes mask(static_cast<std::size_t>((width + 3) * height));
            for (auto* bytes : {&target, &source, &mask})
                for (auto& byte : *bytes) byte = random() % 3 == 0 ? 0 : static_cast<std::uint8_t>(random());
            const PixelBlock8 block{.targetStep = -targetStep,
                                    .source = source.data(),
                                    .sourceStep = sourceStep,
                                    .mask = mask.data(),
                                    .maskStep = width + 3,
                                    .width = width,
                                    .height = height,
                                    .opacity = static_cast<std::int32_t>(random() % 256)};
            CAPTURE(width);
            CAPTURE(sourceStep);
            Bytes plain = target;
            for (std::ptrdiff_t y = 0; y < height; ++y)
                SrcOverRow8Plain(plain.data() + targetStep * (height - 1 - y) + 8, source.data() + sourceStep * y,
                                 mask.data() + (width + 3) * y, 1, width, block.opacity);
            for (const CpuFeatures features : {CpuFeatures::Plain, CpuFeatures::Avx2, CpuFeatures::All}) {
                const test::ScopedCpuFeatures used(features);
                Bytes made = target;
                PixelBlock8 there = block;
                there.target = made.data() + targetStep * (height - 1) + 8;
                SrcOverBlock8(there);
                CHECK(made == plain);
            }
        }
    }
}

TEST_CASE("a block of one colour is equal for all masks, opacities, colours and targets") {
    std::mt19937 random(8);
    Bytes target(4 * pairs);
    Bytes mask(pairs);
    for (std::size_t i = 0; i < pairs; ++i) mask[i] = static_cast<std::uint8_t>(i);
    for (std::int32_t opacity = 0; opacity < 256; ++opacity) {
        for (auto& byte : target) byte = static_cast<std::uint8_t>(random());
        const std::uint32_t pixel = 0xff000000U | static_cast<std::uint32_t>(random());
        Bytes source(4 * pairs);
        for (std::size_t i = 0; i < pairs; ++i) std::memcpy(&source[4 * i], &pixel, 4);
        Bytes plain = target;
        SrcOverRow8Plain(plain.data(), source.data(), mask.data(), 1, pairs, opacity);
        CAPTURE(opacity);
        for (const CpuFeatures features : {CpuFeatures::Avx2, CpuFeatures::All}) {
            const test::ScopedCpuFeatures used(features);
            Bytes made = target;
            ColourOverBlock8({.target = made.data(),
                              .targetStep = 1024,
                              .mask = mask.data(),
                              .maskStep = 256,
                              .width = 256,
                              .height = 256,
                              .pixel = pixel,
                              .opacity = opacity});
            CHECK(plain == made);
        }
    }
}

TEST_CASE("a constant mask gives what a mask of that value gives") {
    std::mt19937 random(4);
    for (const std::size_t count : {0U, 1U, 127U, 128U, 129U, 300U}) {
        Bytes source(4 * count);
        Bytes target(4 * count);
        for (auto* bytes : {&source, &target})
            for (auto& byte : *bytes) byte = static_cast<std::uint8_t>(random());
        Bytes plain = target;
        const std::uint8_t mask = 77;
        SrcOverRow8Plain(plain.data(), source.data(), &mask, 0, static_cast<std::ptrdiff_t>(count), 200);
        SrcOverRow8(target.data(), source.data(), &mask, 0, static_cast<std::ptrdiff_t>(count), 200);
        CAPTURE(count);
        CHECK(plain == target);
    }
}

TEST_CASE("the vector form of the erase row is equal on every input") {
    if (!HasAvx2()) return;
    constexpr std::size_t pixels = 256 * 64;  // each mask value with each channel value
    Bytes mask(pixels);
    Bytes target(4 * pixels);
    for (std::size_t i = 0; i < pixels; ++i) mask[i] = static_cast<std::uint8_t>(i / 64);
    for (std::size_t i = 0; i < 4 * pixels; ++i) target[i] = static_cast<std::uint8_t>(i);
    for (std::int32_t opacity = 0; opacity <= 256; ++opacity) {
        Bytes plain = target;
        Bytes vector = target;
        EraseRow8Plain(plain.data(), mask.data(), 1, pixels, opacity);
        EraseRow8Avx2(vector.data(), mask.data(), pixels, opacity);
        CAPTURE(opacity);
        CHECK(plain == vector);
    }
}

// Words of all 16 bits: what an earlier overflow has left in a picture is worked on alike.
TEST_CASE("the vector form of the 14-bit src_over row is equal on random words of every range") {
    if (!HasAvx2()) return;
    constexpr std::size_t pixels = 4096;
    std::mt19937 random(5);
    using Words = std::vector<std::uint16_t>;
    Words target(4 * pixels);
    Words source(4 * pixels);
    Words mask(pixels);
    for (const std::uint32_t limit : {16384U, 65536U}) {
        for (const std::int32_t opacity : {0, 1, 2, 5000, 8191, 8192, 16382, 16383}) {
            for (auto* words : {&target, &source, &mask})
                for (auto& word : *words) word = static_cast<std::uint16_t>(random() % limit);
            for (std::size_t i = 0; i < pixels; i += 3) mask[i] = i % 2 == 0 ? 0 : 16383;
            Words plain = target;
            Words vector = target;
            SrcOverRow14Plain(plain.data(), source.data(), mask.data(), 1, pixels, opacity);
            SrcOverRow14Avx2(vector.data(), source.data(), mask.data(), pixels, opacity);
            CAPTURE(limit);
            CAPTURE(opacity);
            CHECK(plain == vector);
        }
    }
}

TEST_CASE("the 14-bit src_over row keeps inside its row, whatever its length and the step of its mask") {
    std::mt19937 random(6);
    using Words = std::vector<std::uint16_t>;
    for (std::size_t count = 0; count < 300; count += count < 40 ? 1 : 37) {
        for (const std::ptrdiff_t maskStep : {0, 1, 4}) {
            Words source(4 * count);
            Words mask(4 * count + 1);
            Words target(4 * count + 64);
            for (auto* words : {&source, &mask, &target})
                for (auto& word : *words)
                    word = static_cast<std::uint16_t>(random() % (count % 5 == 4 ? 65536 : 16384));
            if (count % 7 == 6) std::ranges::fill(mask, std::uint16_t{0});
            Words plain = target;
            const auto pixels = static_cast<std::ptrdiff_t>(count);
            SrcOverRow14Plain(plain.data(), source.data(), mask.data(), maskStep, pixels, 9000);
            SrcOverRow14(target.data(), source.data(), mask.data(), maskStep, pixels, 9000);
            CAPTURE(count);
            CAPTURE(maskStep);
            CHECK(plain == target);
        }
    }
}
#endif

}  // namespace chalkpane
