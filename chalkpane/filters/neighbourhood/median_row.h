#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace chalkpane {

// One row of 8-bit medians over a square window.
//
//   rows      the 2 * radius + 1 rows of the window, each with radius * channels bytes before and behind those of the
//             row itself; coordinates beyond the picture repeat its edge
//   channels  1 or 4, interleaved, each on its own
//   out       the row; out.size() + 2 * radius * channels bytes stand in each of `rows`
//   radius    1 .. largestMedianRadius
//
// KEEP: the answer is found in bins of 16 first. Where exactly half of the window, rounded down, lies in the lower
// bins up to some bin's end, the answer is the top of that bin and not the next larger value.
inline constexpr std::int32_t largestMedianRadius = 127;  // whose window still counts in 16 bits
void MedianRow(std::span<const std::uint8_t* const> rows, std::int32_t channels, std::int32_t radius,
               std::span<std::uint8_t> out);

// The same by moving a histogram along the row, at any radius. `MedianRow` sorts a window of 3 x 3 instead.
void MedianRowByHistogram(std::span<const std::uint8_t* const> rows, std::int32_t channels, std::int32_t radius,
                          std::span<std::uint8_t> out);

// For 32 channels at once: windows of 5 x 5 by sorting, others by counting through them. Needs AVX2, and is there where
// `builtWithAvx2`.
inline constexpr std::int32_t largestCountedRadius = 7;  // whose windows count in bytes
inline constexpr std::size_t leastCountedChannels = 32;  // in a row
void MedianRowAvx2(std::span<const std::uint8_t* const> rows, std::int32_t channels, std::span<std::uint8_t> out);

}  // namespace chalkpane
