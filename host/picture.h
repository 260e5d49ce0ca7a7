#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace kel {

// A picture of four bytes a pixel, red, green, blue, alpha, top row first and without gaps between rows. Alpha is
// straight unless a function says otherwise: colours are not multiplied by it.
struct Picture {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::uint8_t> rgba;

    Picture() = default;
    // Transparent black. Throws Error for a side below 1 or above largestPictureSide.
    Picture(std::int32_t pictureWidth, std::int32_t pictureHeight);

    // The pixel is inside; x rightwards, y downwards.
    [[nodiscard]] std::array<std::uint8_t, 4> At(std::int32_t x, std::int32_t y) const;
    void Set(std::int32_t x, std::int32_t y, const std::array<std::uint8_t, 4>& pixel);

    friend bool operator==(const Picture&, const Picture&) = default;

private:
    [[nodiscard]] std::size_t Offset(std::int32_t x, std::int32_t y) const;
};

constexpr std::int32_t largestPictureSide = 16384;  // what the renderer takes as a texture

// The same picture upside down: OpenGL counts rows from the bottom.
[[nodiscard]] Picture Flipped(const Picture& picture);

// Reads a PNG or a JPEG, whatever the file is called. Throws Error naming the file and the reason.
[[nodiscard]] Picture ReadPicture(const std::filesystem::path& file);

// True: WritePicture takes a file of this name, that is, it ends in .png, .jpg or .jpeg.
[[nodiscard]] bool IsPictureName(const std::filesystem::path& file);

// Writes a PNG or a JPEG (without alpha), as the name's ending says. The file appears whole or not at all: it is
// written under another name beside its place and then renamed. Throws Error naming the file and the reason.
void WritePicture(const Picture& picture, const std::filesystem::path& file);

}  // namespace kel
