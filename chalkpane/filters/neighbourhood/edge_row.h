#pragma once

#include <cstddef>
#include <cstdint>

namespace chalkpane {

// A stretch of a row of edges whose neighbours all lie in the picture.
template <typename Channel>
struct EdgeStretch {
    const Channel* upper;  // the stretch in the source, and in the rows around it
    const Channel* here;
    const Channel* lower;
    Channel* out;
    std::size_t count;     // channels, at least `leastEdgeChannels`
    std::size_t channels;  // 1 or 4, interleaved; the fourth is kept
    bool limitToAlpha;     // else to full scale
    double factor;         // of a slope
};
inline constexpr std::size_t leastEdgeChannels = 16;

// Needs AVX2, and is there where `builtWithAvx2`.
void EdgesAvx2(const EdgeStretch<std::uint8_t>& stretch);
void EdgesAvx2(const EdgeStretch<std::uint16_t>& stretch);

}  // namespace chalkpane
