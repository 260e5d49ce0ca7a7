#pragma once

#include <cstdint>
#include <span>

namespace chalkpane {

// Rows hold four channels a pixel and are borrowed for the call. A count of pixels below 1 does nothing, and nothing is
// read or written past the end of a row that is shorter than the count says.

// Colour with its alpha taken out, limited to full scale. At 8 bits alpha is copied and alpha 0 gives black.
// DIFFERS: at 14 bits the output alpha is of no use. Where alpha is 0 or full it takes the red word, elsewhere it is
// left as it was.
void UnpremultiplyRow8(std::int32_t count, std::span<const std::uint8_t> input, std::span<std::uint8_t> output);
void UnpremultiplyRow14(std::int32_t count, std::span<const std::uint16_t> input, std::span<std::uint16_t> output);

}  // namespace chalkpane
