#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace picture_io {

// Pixels to the metre.
struct Resolution {
    std::uint32_t x = 0;
    std::uint32_t y = 0;
};

// What a picture file says besides its pixels, and how it keeps them.
struct PictureInfo {
    bool isGrey = false;        // one channel of light
    bool hasAlpha = false;      // a channel of it
    bool halvesColour = false;  // a JPEG with one colour to 2 x 2 pixels

    std::vector<std::uint8_t> profile;  // ICC; empty: none, as for those below
    std::vector<std::uint8_t> exif;     // the block from its byte order on, told as upright
    std::vector<std::uint8_t> xmp;
    std::vector<std::string> comments;  // of a JPEG
    std::vector<std::uint8_t> texts;    // of a PNG: its chunks of text, whole and one behind the other
    std::optional<Resolution> resolution;
};

// How a picture file is written.
struct WriteOptions {
    int quality = 95;           // of a JPEG, a WebP, an AVIF or a HEIC, 1 to 100
    int compression = 4;        // of a PNG, 0 (none) to 9
    PictureInfo info{};         // goes into PNG, JPEG, AVIF and HEIC
    bool followsInfo = false;   // grey stays grey where the pixels are, and what was opaque and is gets no alpha
    bool halvesColour = false;  // a JPEG keeps one colour to 2 x 2 pixels; otherwise each pixel's
};

}  // namespace picture_io
