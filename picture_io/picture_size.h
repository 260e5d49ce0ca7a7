#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

namespace picture_io {

struct PictureSize {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool hasWords = false;  // 16 bits a channel
    // How it is decoded: row by row, as an upright JPEG is, or all at once, and then with so many copies of the pixels
    // at most; and what the decoder keeps of the whole picture besides, in bytes to each pixel.
    bool comesByRows = false;
    double decodingCopies = 3;
    double keptByDecoder = 0;

    [[nodiscard]] double Pixels() const { return static_cast<double>(width) * static_cast<double>(height); }
};

// How large a picture says it is, of whatever format is read here; whether the rest of it is well nobody asks. Takes a
// few bytes of the file. Nothing for other files, and for what is no regular file or not there: their reader tells.
[[nodiscard]] std::optional<PictureSize> ReadPictureSize(const std::filesystem::path& file);
// The same from the bytes of the file.
[[nodiscard]] std::optional<PictureSize> PictureSizeIn(std::span<const std::uint8_t> bytes);

// What a picture takes in memory at most, in bytes: the file and its pixels once, and then the pixels so many times.
//   copies   of the pixels, each of four channels
//   asWords  the copies are of words also where the file has bytes
[[nodiscard]] double MemoryOfPicture(const std::filesystem::path& file, double copies, bool asWords);
[[nodiscard]] double MemoryOfPicture(std::span<const std::uint8_t> bytes, double copies, bool asWords);

}  // namespace picture_io
