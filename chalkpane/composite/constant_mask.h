#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace chalkpane {

// Runs a row function that wants a mask value for each pixel over a row with the same coverage everywhere: a short
// piece of mask does for all of it.
//
//   Row             void(Channel* target, const Channel* source, const Channel* mask, count, opacity)
//   target, source  4 channels a pixel, `count` pixels
template <auto Row, typename Channel>
void RunWithConstantMask(Channel* target, const Channel* source, Channel coverage, std::ptrdiff_t count,
                         std::int32_t opacity) {
    std::array<Channel, 128> piece;
    piece.fill(coverage);
    constexpr auto length = static_cast<std::ptrdiff_t>(piece.size());
    for (; count > length; count -= length, target += 4 * length, source += 4 * length)
        Row(target, source, piece.data(), length, opacity);
    Row(target, source, piece.data(), count, opacity);
}

}  // namespace chalkpane
