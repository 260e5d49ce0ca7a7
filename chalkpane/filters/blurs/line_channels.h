#pragma once

#include <cstddef>
#include <cstdint>

namespace chalkpane {

// How channels get into the lanes of a FloatLine and back, in the forms for AVX-512, which are there where
// `builtWithAvx512`. `line` holds sixteen floats a position, and `count` positions.
//
// Back they come divided by `gain`, rounded and limited; NaN is 0.

// Columns: sixteen neighbouring channels of each row are a position, and the next row's are `rowChannels` further on.
void LoadColumnsAvx512(const std::uint8_t* channels, std::size_t rowChannels, std::size_t count, float* line);
void LoadColumnsAvx512(const std::uint16_t* channels, std::size_t rowChannels, std::size_t count, float* line);
void StoreColumnsAvx512(const float* line, float gain, std::size_t count, std::uint8_t* channels,
                        std::size_t rowChannels);
void StoreColumnsAvx512(const float* line, float gain, std::size_t count, std::uint16_t* channels,
                        std::size_t rowChannels);

// Four rows of pixels of four channels, side by side.
void LoadFourRowsAvx512(const std::uint8_t* const* rows, std::size_t count, float* line);
void LoadFourRowsAvx512(const std::uint16_t* const* rows, std::size_t count, float* line);
void StoreFourRowsAvx512(const float* line, float gain, std::size_t count, std::uint8_t* const* rows);
void StoreFourRowsAvx512(const float* line, float gain, std::size_t count, std::uint16_t* const* rows);

}  // namespace chalkpane
