#pragma once

#include <cstdint>
#include <span>

namespace picture_io {

// The block of EXIF in a picture file from its byte order ("II" or "MM") on, which is laid out like a TIFF file.

enum class Orientation : std::uint8_t {
    Upright = 1,
    Mirrored,       // left and right exchanged
    UpsideDown,     // half a revolution
    Flipped,        // top and bottom exchanged
    Transposed,     // rows and columns exchanged
    FirstRowRight,  // the first row is the right side
    Transversed,    // the same along the other diagonal
    FirstRowLeft,   // the first row is the left side
};

// How the pixels stand. Upright where the block does not say, or is none.
[[nodiscard]] Orientation OrientationIn(std::span<const std::uint8_t> exif);

// Makes the block say that picture and thumbnail stand upright. A block that does not say stays as it is.
void SetUpright(std::span<std::uint8_t> exif);

}  // namespace picture_io
