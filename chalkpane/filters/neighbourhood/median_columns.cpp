#include "chalkpane/filters/neighbourhood/median_columns.h"

#include <algorithm>

namespace chalkpane {

MedianColumns::MedianColumns(std::size_t rowBytes, std::int32_t channels, std::int32_t radius)
    : m_columns(rowBytes),
      m_channels(static_cast<std::size_t>(channels)),
      m_radius(radius),
      m_coarse(rowBytes * groupSize),
      m_fine(rowBytes * groupSize * groupSize) {}

void MedianColumns::Clear() {
    std::fill(m_coarse.begin(), m_coarse.end(), std::uint8_t{0});
    std::fill(m_fine.begin(), m_fine.end(), std::uint8_t{0});
}

void MedianColumns::CountRow(const std::uint8_t* row, std::uint8_t change) {
    std::uint8_t* const coarse = m_coarse.data();
    std::uint8_t* const fine = m_fine.data();
    for (std::size_t column = 0; column < m_columns; ++column) {
        const std::size_t group = row[column] / groupSize;
        const std::size_t place = (group * m_columns + column) * groupSize + row[column] % groupSize;
        coarse[column * groupSize + group] = static_cast<std::uint8_t>(coarse[column * groupSize + group] + change);
        fine[place] = static_cast<std::uint8_t>(fine[place] + change);
    }
}

}  // namespace chalkpane
