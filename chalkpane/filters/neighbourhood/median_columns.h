#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace chalkpane {

// Medians of large windows at the same cost whatever their size: a histogram of each column of the window's rows, which
// moves down with the window by one value out and one in, and per pixel a sum of such histograms, which moves along the
// row by one column out and one in. The medians are those of `MedianRow`.
class MedianColumns {
public:
    // Of rows of so many bytes, the window's overhang on both sides included; `channels` interleaved, each on its own.
    MedianColumns(std::size_t rowBytes, std::int32_t channels, std::int32_t radius);

    void Clear();
    void AddRow(const std::uint8_t* row);
    // One row of the window leaves and one enters.
    void MoveDown(const std::uint8_t* leaving, const std::uint8_t* entering);
    // With the 2 * radius + 1 rows of the window added. Needs AVX2, and is there where `builtWithAvx2`.
    void MedianRowAvx2(std::span<std::uint8_t> out) const;

    // From here on better than going through the windows themselves.
    static constexpr std::int32_t leastRadius = 7;

private:
    static constexpr std::size_t groupSize = 16;  // values of a coarse bin, and coarse bins

    void MedianChannelAvx2(std::size_t channel, std::span<std::uint8_t> out) const;

    std::size_t m_columns;  // bytes of a row, each a column of its own
    std::size_t m_channels;
    std::int32_t m_radius;
    // Counts are those of one column, 255 at most, and running: each bin holds what is in it and in those before it, so
    // that sums over columns are running too. The coarse bins of a column lie together; so do the 16 fine bins of a
    // column in one coarse one, and next to them those of the next column.
    std::vector<std::uint8_t> m_coarse;
    std::vector<std::uint8_t> m_fine;
};

}  // namespace chalkpane
