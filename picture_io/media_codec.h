#pragma once

#include <cstdint>
#include <vector>

#include "picture_io/channels.h"
#include "picture_io/picture.h"
#include "picture_io/picture_format.h"
#include "picture_io/picture_info.h"

namespace picture_io {

// The formats besides PNG, JPEG, GIF, AVIF and HEIC, through libavcodec. All throw Error with the reason alone.

// The first picture in the bytes; in words where the file has more than 8 bits a channel and `wantsWords`.
[[nodiscard]] AnyPicture DecodeMedia(const std::vector<std::uint8_t>& bytes, const FormatRow& format, bool wantsWords,
                                     PictureInfo& info);

// channels: those that the format has (ChannelsIn)
[[nodiscard]] std::vector<std::uint8_t> EncodeMedia(const AnyPicture& picture, const FormatRow& format,
                                                    const WriteOptions& options, Channels channels);

}  // namespace picture_io
