#pragma once

#include <cstdint>
#include <vector>

#include "picture_io/picture.h"

namespace picture_io {

// A PNG file's bytes with 16 bits a channel. The words pass through unchanged, but for files that name a gamma other
// than the usual, which are read as the usual. All throw Error with the reason alone.

// True: the bytes begin as a PNG of 16 bits a channel does.
[[nodiscard]] bool HasWords(const std::vector<std::uint8_t>& bytes);

// Reads any PNG; what has fewer bits is spread over the words, 255 becoming 65535.
[[nodiscard]] Picture16 DecodePng16(const std::vector<std::uint8_t>& bytes);

}  // namespace picture_io
