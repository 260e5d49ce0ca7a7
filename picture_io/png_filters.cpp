#include "picture_io/png_filters.h"

#include <algorithm>
#include <cstdlib>

namespace picture_io {
namespace {

using Row = std::span<const std::uint8_t>;

// The one of left, above and corner that is nearest to left + above - corner.
std::uint8_t Paeth(int left, int above, int corner) {
    const int toLeft = std::abs(above - corner);
    const int toAbove = std::abs(left - corner);
    const int toCorner = std::abs(left + above - 2 * corner);
    if (toLeft <= toAbove && toLeft <= toCorner) return static_cast<std::uint8_t>(left);
    return static_cast<std::uint8_t>(toAbove <= toCorner ? above : corner);
}

// Calls `told` with each byte's place and its left, upper and corner neighbours, 0 outside, for what to take off it.
template <typename Told>
void TakeOff(Row row, Row above, std::size_t pixelBytes, std::uint8_t* to, Told told) {
    const std::size_t first = std::min(pixelBytes, row.size());
    for (std::size_t i = 0; i < first; ++i) to[i] = static_cast<std::uint8_t>(row[i] - told(0, above[i], 0));
    for (std::size_t i = first; i < row.size(); ++i)
        to[i] = static_cast<std::uint8_t>(row[i] - told(row[i - pixelBytes], above[i], above[i - pixelBytes]));
}

std::uint64_t Weight(const std::vector<std::uint8_t>& row) {
    std::uint64_t sum = 0;
    for (std::size_t at = 0; at < row.size();) {
        const std::size_t end = std::min(row.size(), at + 65536);
        std::uint32_t part = 0;  // narrow, so that more go into a vector
        for (; at < end; ++at) part += static_cast<std::uint32_t>(std::abs(static_cast<std::int8_t>(row[at])));
        sum += part;
    }
    return sum;
}

}  // namespace

void PngRowFilter::Apply(Row row, Row above, std::uint8_t* to) {
    std::copy(row.begin(), row.end(), m_candidates[0].begin());
    TakeOff(row, above, m_pixelBytes, m_candidates[1].data(), [](int left, int, int) { return left; });
    TakeOff(row, above, m_pixelBytes, m_candidates[2].data(), [](int, int up, int) { return up; });
    TakeOff(row, above, m_pixelBytes, m_candidates[3].data(), [](int left, int up, int) { return (left + up) / 2; });
    TakeOff(row, above, m_pixelBytes, m_candidates[4].data(), Paeth);
    std::size_t best = 0;
    std::uint64_t least = Weight(m_candidates[0]);
    for (std::size_t i = 1; i < m_candidates.size(); ++i)
        if (const std::uint64_t weight = Weight(m_candidates[i]); weight < least) {
            best = i;
            least = weight;
        }
    *to = static_cast<std::uint8_t>(best);
    std::copy(m_candidates[best].begin(), m_candidates[best].end(), to + 1);
}

}  // namespace picture_io
