#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <variant>
#include <vector>

namespace picture_io {

// A picture of four channels a pixel, red, green, blue, alpha, top row first and without gaps between rows. Alpha is
// straight unless a function says otherwise: colours are not multiplied by it. A channel is a byte, or a word with the
// full scale 65535.
template <typename Word>
struct BasicPicture {
    using Channel = Word;

    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<Channel> rgba;

    BasicPicture() = default;
    // Transparent black. Throws Error for a side below 1 or above largestPictureSide.
    BasicPicture(std::int32_t pictureWidth, std::int32_t pictureHeight);

    // The pixel is inside; x rightwards, y downwards.
    [[nodiscard]] std::array<Channel, 4> At(std::int32_t x, std::int32_t y) const;
    void Set(std::int32_t x, std::int32_t y, const std::array<Channel, 4>& pixel);

    friend bool operator==(const BasicPicture&, const BasicPicture&) = default;

private:
    [[nodiscard]] std::size_t Offset(std::int32_t x, std::int32_t y) const;
};
using Picture = BasicPicture<std::uint8_t>;
using Picture16 = BasicPicture<std::uint16_t>;
using AnyPicture = std::variant<Picture, Picture16>;

constexpr std::int32_t largestPictureSide = 16384;  // what the renderer takes as a texture
// Throws Error for a side below 1 or above that.
void RequireSides(std::int32_t width, std::int32_t height);

// The same picture upside down: OpenGL counts rows from the bottom.
[[nodiscard]] Picture Flipped(const Picture& picture);

// A picture whose colours are multiplied by its alpha, made straight. Where nothing is covered the colour stays.
[[nodiscard]] Picture DividedByAlpha(Picture premultiplied);

// Reads a picture, whatever the file is called and however its pixels are stored there: it comes out upright
// (picture_file.h tells more of it). Throws Error naming the file and the reason.
[[nodiscard]] Picture ReadPicture(const std::filesystem::path& file);
// The same, with the words of a file of 16 bits a channel as they are.
[[nodiscard]] AnyPicture ReadAnyPicture(const std::filesystem::path& file);

// True: WritePicture takes a file of this name, by its ending.
[[nodiscard]] bool IsPictureName(const std::filesystem::path& file);

// Writes a picture file as the name's ending says (picture_format.h), with alpha where the format has it. It appears
// whole or not at all (cli::StagedFile). Throws Error naming the file and the reason.
void WritePicture(const Picture& picture, const std::filesystem::path& file);
// The same with 16 bits a channel, which not all formats have.
void WritePicture(const Picture16& picture, const std::filesystem::path& file);

}  // namespace picture_io
