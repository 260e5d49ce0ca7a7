#pragma once

#include <cstdint>
#include <vector>

#include "picture_io/picture.h"
#include "picture_io/picture_format.h"
#include "picture_io/picture_info.h"

namespace picture_io {

// AVIF and HEIC: one kind of file, two codecs. Both throw Error with the reason alone.

// The chief picture in the bytes, upright, as the file itself has it turned; in words where it has more than 8 bits a
// channel and `wantsWords`. What it says of EXIF is told as upright.
[[nodiscard]] AnyPicture DecodeHeif(const std::vector<std::uint8_t>& bytes, const FormatRow& format, bool wantsWords,
                                    PictureInfo& info);

// Alpha is written where a pixel is not opaque; a quality of 100 loses nothing.
[[nodiscard]] std::vector<std::uint8_t> EncodeHeif(const Picture& picture, const FormatRow& format,
                                                   const WriteOptions& options);

}  // namespace picture_io
