#include "chalkpane/filters/blurs/convolve_row.h"

#include <doctest/doctest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "tests/chalkpane/scoped_cpu_features.h"

namespace {

constexpr unsigned seed = 20261121;

// One channel at a time, in 64 bits.
template <typename Channel>
std::vector<Channel> Reference(const std::vector<std::vector<Channel>>& rows, const std::vector<Channel>& taps,
                               int shift) {
    std::vector<Channel> out(rows[0].size());
    for (std::size_t i = 0; i < out.size(); ++i) {
        std::int64_t sum = std::int64_t{1} << (shift - 1);
        for (std::size_t k = 0; k < taps.size(); ++k) sum += std::int64_t{taps[k]} * rows[k][i];
        out[i] = static_cast<Channel>(sum >> shift);
    }
    return out;
}

// even: all taps alike, none of them large, but for what is left over in the middle.
template <typename Channel>
void CompareWithReference(std::int32_t fullScale, std::int32_t total, int shift, bool even) {
    std::mt19937 random(seed);
    for (std::size_t radius : {1U, 2U, 3U, 10U, 20U}) {
        for (std::size_t length : {0U, 1U, 15U, 16U, 17U, 31U, 32U, 33U, 511U, 512U, 513U, 1300U}) {
            std::vector<std::vector<Channel>> rows(2 * radius + 1, std::vector<Channel>(length));
            for (auto& row : rows)
                for (auto& channel : row)
                    channel = static_cast<Channel>(random() % 4 == 0 ? static_cast<unsigned>(fullScale)
                                                                     : random() % static_cast<unsigned>(fullScale + 1));
            std::vector<Channel> taps(2 * radius + 1);
            std::int32_t rest = total;
            for (std::size_t k = 0; k < radius; ++k) {
                taps[k] = static_cast<Channel>(even ? static_cast<unsigned>(total) / (2 * radius + 1)
                                                    : random() % (static_cast<unsigned>(total) / (4 * radius)));
                taps[2 * radius - k] = taps[k];
                rest -= 2 * taps[k];
            }
            taps[radius] = static_cast<Channel>(rest);
            std::vector<const Channel*> sources;
            sources.reserve(rows.size());
            for (const auto& row : rows) sources.push_back(row.data());
            const auto wanted = Reference(rows, taps, shift);
            CAPTURE(seed);
            CAPTURE(radius);
            CAPTURE(length);
            using chalkpane::CpuFeatures;
            for (const CpuFeatures features : {CpuFeatures::Plain, CpuFeatures::Avx2, CpuFeatures::All}) {
                const chalkpane::test::ScopedCpuFeatures used(features);
                std::vector<Channel> made(length);
                chalkpane::ConvolveRow(std::span<const Channel* const>(sources), std::span<const Channel>(taps),
                                       std::span<Channel>(made));
                CAPTURE(static_cast<int>(features));
                CHECK(made == wanted);
            }
        }
    }
}

}  // namespace

TEST_CASE("A row's convolution at 8 bits is the plain sum, vector version or not") {
    MESSAGE("vector version runs: ", chalkpane::HasAvx2());
    for (const bool even : {false, true}) CompareWithReference<std::uint8_t>(255, 256, 8, even);
}

TEST_CASE("A row's convolution at 14 bits is the plain sum, vector version or not") {
    for (const bool even : {false, true}) CompareWithReference<std::uint16_t>(16383, 16384, 14, even);
}
