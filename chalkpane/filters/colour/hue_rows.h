#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace chalkpane {

// Rotates the hue of every pixel of a row by `turn`, and by what `byValue` says for its value; both in turns.
//
//   byValue  256 or 16384 turns by the largest component of a pixel, as the depth has it; null: none
//
// 8-bit channels are widened on the way in and narrowed on the way out.
void TurnHues(std::span<std::uint8_t> pixels, float turn, const float* byValue);
void TurnHues(std::span<std::uint16_t> pixels, float turn, const float* byValue);

// Need AVX2, and are there where `builtWithAvx2`. They turn as many pixels as come in eights and return how many
// channels that were.
std::size_t TurnHuesAvx2(std::span<std::uint8_t> pixels, float turn, const float* byValue);
std::size_t TurnHuesAvx2(std::span<std::uint16_t> pixels, float turn, const float* byValue);

// Need AVX-512, and are there where `builtWithAvx512`.
void TurnHuesAvx512(std::span<std::uint8_t> pixels, float turn, const float* byValue);
void TurnHuesAvx512(std::span<std::uint16_t> pixels, float turn, const float* byValue);

}  // namespace chalkpane
