#pragma once

#include <filesystem>

#include "kel/video/av_objects.h"
#include "kel/video/video_codec.h"
#include "kel/video/video_writer.h"

namespace kel {

struct OpenedEncoder {
    AvCodec codec;
    AvFrame frame;  // that its pictures are packed into
};

enum class HeaderPlace { Packets, Container };

// An encoder of such pictures, one to each step of its time base. Throws Error with the name of what is written.
[[nodiscard]] OpenedEncoder OpenEncoder(const std::filesystem::path& name, const VideoCodec& wanted,
                                        const VideoSettings& settings, HeaderPlace header);

}  // namespace kel
