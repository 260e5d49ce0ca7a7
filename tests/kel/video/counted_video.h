#pragma once

#include <cstdint>
#include <filesystem>

#include "kel/video/video_writer.h"
#include "picture_io/picture.h"

namespace kel::testing {

// Frame `index`, up to 63, of a video in which every frame says its number: the first quarter of the width has the grey
// 32 * (index / 8), the second 32 * (index % 8), and the right half is noise in colour, in blocks of 8 by 8. Lossy
// codecs keep both apart.
[[nodiscard]] inline picture_io::Picture CountedFrame(std::int64_t index, std::int32_t width, std::int32_t height) {
    picture_io::Picture picture(width, height);
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x) {
            const auto noise = static_cast<std::uint32_t>(x / 8 * 31 + y / 8 * 17 + index * 7) * 2654435761U;
            const auto grey = static_cast<std::uint8_t>(32 * (x < width / 4 ? index / 8 : index % 8));
            const auto byte = [&](unsigned shift) {
                return static_cast<std::uint8_t>(x < width / 2 ? grey : noise >> shift);
            };
            picture.Set(x, y, {byte(24), byte(16), byte(8), 255});
        }
    return picture;
}

// The number that a frame says.
[[nodiscard]] inline std::int64_t NumberOf(const picture_io::Picture& picture) {
    const auto digit = [&](std::int32_t x) { return (picture.At(x, picture.height / 2)[1] + 16) / 32; };
    return digit(picture.width / 8) * 8 + digit(picture.width * 3 / 8);
}

inline void WriteCountedVideo(const std::filesystem::path& file, std::int64_t frames, std::int32_t width,
                              std::int32_t height, double framesPerSecond = 25) {
    VideoWriter writer(file, {width, height, framesPerSecond, false});
    for (std::int64_t index = 0; index < frames; ++index) writer.Write(CountedFrame(index, width, height));
    writer.Close();
    writer.Commit();
}

}  // namespace kel::testing
