#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace chalkpane {

// One row of a symmetric convolution: out[i] is the rounded sum over k of taps[k] * sources[k][i].
//
//   sources  one pointer per tap to at least out.size() channels, none of them inside `out`; not null
//   taps     an odd number, the same from both ends to the middle; they add up to 256, or 16384 at 14 bits
//   out      channels, any number
//
// Sums start at half and are shifted right by 8 or 14. They are kept modulo 65536 (8 bits) or 2^32 (14 bits), which no
// set of taps of the stated sum exceeds. The plain and the vector version give the same channels.
void ConvolveRow(std::span<const std::uint8_t* const> sources, std::span<const std::uint8_t> taps,
                 std::span<std::uint8_t> out);
void ConvolveRow(std::span<const std::uint16_t* const> sources, std::span<const std::uint16_t> taps,
                 std::span<std::uint16_t> out);

// The same without the choice of the fastest version that runs here.
void ConvolveRowPlain(std::span<const std::uint8_t* const> sources, std::span<const std::uint8_t> taps,
                      std::span<std::uint8_t> out);
void ConvolveRowPlain(std::span<const std::uint16_t* const> sources, std::span<const std::uint16_t> taps,
                      std::span<std::uint16_t> out);

// Need AVX2, and are there where `builtWithAvx2`. They return how many channels, from the left, they did: whole blocks.
std::size_t ConvolveRowAvx2(std::span<const std::uint8_t* const> sources, std::span<const std::uint8_t> taps,
                            std::span<std::uint8_t> row);
std::size_t ConvolveRowAvx2(std::span<const std::uint16_t* const> sources, std::span<const std::uint16_t> taps,
                            std::span<std::uint16_t> row);
// The same for AVX-512, where `builtWithAvx512`.
std::size_t ConvolveRowAvx512(std::span<const std::uint16_t* const> sources, std::span<const std::uint16_t> taps,
                              std::span<std::uint16_t> row);

}  // namespace chalkpane
