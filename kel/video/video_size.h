#pragma once

#include <filesystem>
#include <optional>

namespace kel {

// The pixels of a video's frame, before one of them is decoded. Nothing for what is no video or not there: its reader
// tells.
[[nodiscard]] std::optional<double> ReadVideoPixels(const std::filesystem::path& file);

// What a video takes in memory while it is read, for each pixel of a frame: twenty frames that others are made from, of
// one and a half bytes to a pixel as most are coded, or ten of three; the frame as a picture, and on its way.
constexpr double bytesOfVideoPixel = 40;

}  // namespace kel
