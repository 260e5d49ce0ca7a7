#include "chalkpane/filters/neighbourhood/median_row.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "chalkpane/base/call_widest.h"

namespace chalkpane {
namespace {

// Counts of one channel in the window: each value, and each 16 neighbouring values together.
struct Histogram {
    std::array<std::uint16_t, 256> fine{};
    std::array<std::uint16_t, 16> coarse{};

    void Add(std::uint8_t value) {
        ++fine[value];
        ++coarse[value >> 4];
    }
    void Remove(std::uint8_t value) {
        --fine[value];
        --coarse[value >> 4];
    }
    [[nodiscard]] std::uint8_t Median(std::int32_t half) const {
        std::int32_t count = -half;
        std::size_t group = 0;
        for (; group < 15; ++group) {
            count += coarse[group];
            if (count >= 0) break;
        }
        if (group == 15) count += coarse[15];
        std::size_t bin = group * 16 + 15;
        while (count > 0) {
            count -= fine[bin];
            if (count > 0) --bin;
        }
        return static_cast<std::uint8_t>(bin);
    }
};

using Nine = std::array<std::uint8_t, 9>;

[[gnu::always_inline]] inline void Order(std::uint8_t& low, std::uint8_t& high) {
    const std::uint8_t smaller = std::min(low, high);
    high = std::max(low, high);
    low = smaller;
}

// Fourth and fifth of nine by a sorting network (Floyd's, 25 exchanges, less those that decide other places).
[[gnu::always_inline]] inline std::uint8_t MedianOfNine(Nine v) {
    Order(v[0], v[1]), Order(v[3], v[4]), Order(v[6], v[7]);
    Order(v[1], v[2]), Order(v[4], v[5]), Order(v[7], v[8]);
    Order(v[0], v[1]), Order(v[3], v[4]), Order(v[6], v[7]);
    Order(v[0], v[3]), Order(v[3], v[6]), Order(v[0], v[3]);
    Order(v[1], v[4]), Order(v[4], v[7]), Order(v[1], v[4]);
    Order(v[2], v[5]), Order(v[5], v[8]), Order(v[2], v[5]);
    Order(v[1], v[3]), Order(v[5], v[7]);
    Order(v[2], v[6]);
    Order(v[4], v[6]);
    Order(v[2], v[4]);
    Order(v[2], v[3]), Order(v[5], v[6]);
    // Four values end a bin of 16 exactly when the fourth and the fifth lie in different ones.
    const bool endsBin = ((v[3] ^ v[4]) & 0xf0) != 0;
    return endsBin ? static_cast<std::uint8_t>(v[3] | 15) : v[4];
}

[[gnu::always_inline]] inline void MedianRowOfNine(std::span<const std::uint8_t* const> rows, std::ptrdiff_t channels,
                                                   std::span<std::uint8_t> out) {
    const std::uint8_t* const below = rows[0] + channels;
    const std::uint8_t* const here = rows[1] + channels;
    const std::uint8_t* const above = rows[2] + channels;
    std::uint8_t* const __restrict median = out.data();
    const auto count = static_cast<std::ptrdiff_t>(out.size());
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        median[i] = MedianOfNine({below[i - channels], below[i], below[i + channels], here[i - channels], here[i],
                                  here[i + channels], above[i - channels], above[i], above[i + channels]});
    }
}

}  // namespace

void MedianRowByHistogram(std::span<const std::uint8_t* const> rows, std::int32_t channels, std::int32_t radius,
                          std::span<std::uint8_t> out) {
    const std::size_t width = 2 * static_cast<std::size_t>(radius) + 1;
    const auto half = static_cast<std::int32_t>(width * width / 2);
    const auto step = static_cast<std::size_t>(channels);
    for (std::size_t channel = 0; channel < step; ++channel) {
        Histogram histogram;
        for (const std::uint8_t* row : rows)
            for (std::size_t i = 0; i < width; ++i) histogram.Add(row[channel + i * step]);
        for (std::size_t i = channel; i < out.size(); i += step) {
            out[i] = histogram.Median(half);
            if (i + step >= out.size()) break;
            for (const std::uint8_t* row : rows) {
                histogram.Remove(row[i]);
                histogram.Add(row[i + width * step]);
            }
        }
    }
}

void MedianRow(std::span<const std::uint8_t* const> rows, std::int32_t channels, std::int32_t radius,
               std::span<std::uint8_t> out) {
    if (radius == 1) return CallWidest([&] { MedianRowOfNine(rows, channels, out); });
    if constexpr (builtWithAvx2)
        if (HasAvx2() && radius <= largestCountedRadius && out.size() >= leastCountedChannels)
            return MedianRowAvx2(rows, channels, out);
    MedianRowByHistogram(rows, channels, radius, out);
}

}  // namespace chalkpane
