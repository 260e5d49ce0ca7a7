#pragma once

#include <cstdint>
#include <vector>

#include "picture_io/channels.h"
#include "picture_io/picture.h"

namespace picture_io {

// A PNG file's bytes. Both throw Error with the reason alone.
[[nodiscard]] Picture DecodePng(const std::vector<std::uint8_t>& bytes);
[[nodiscard]] std::vector<std::uint8_t> EncodePng(const Picture& picture, Channels channels = Channels::RGBA);

}  // namespace picture_io
