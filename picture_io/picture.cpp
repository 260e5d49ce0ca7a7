#include "picture_io/picture.h"

#include <algorithm>
#include <string>

#include "cli/error.h"
#include "cli/file_bytes.h"
#include "picture_io/decoded.h"

namespace picture_io {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes EncodedFor(const std::filesystem::path& file, const AnyPicture& picture) {
    const FormatRow* const format = FormatOfName(file);
    try {
        if (format == nullptr) throw cli::Error(EndingsRule());
        return EncodePictureFile(picture, *format, {});
    } catch (const cli::Error& error) {
        throw cli::Error(file.string(), {}, error.what());
    }
}

}  // namespace

void RequireSides(std::int32_t width, std::int32_t height) {
    if (std::min(width, height) < 1 || std::max(width, height) > largestPictureSide)
        throw cli::Error("a picture of " + std::to_string(width) + " x " + std::to_string(height) +
                         " pixels: sides of 1 to " + std::to_string(largestPictureSide) + " are possible");
}

template <typename Word>
BasicPicture<Word>::BasicPicture(std::int32_t pictureWidth, std::int32_t pictureHeight)
    : width(pictureWidth), height(pictureHeight) {
    RequireSides(width, height);
    rgba.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
}

template <typename Word>
std::size_t BasicPicture<Word>::Offset(std::int32_t x, std::int32_t y) const {
    return (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) * 4;
}

template <typename Word>
std::array<Word, 4> BasicPicture<Word>::At(std::int32_t x, std::int32_t y) const {
    const std::size_t at = Offset(x, y);
    return {rgba[at], rgba[at + 1], rgba[at + 2], rgba[at + 3]};
}

template <typename Word>
void BasicPicture<Word>::Set(std::int32_t x, std::int32_t y, const std::array<Word, 4>& pixel) {
    std::copy(pixel.begin(), pixel.end(), rgba.begin() + static_cast<std::ptrdiff_t>(Offset(x, y)));
}

template struct BasicPicture<std::uint8_t>;
template struct BasicPicture<std::uint16_t>;

Picture Flipped(const Picture& picture) {
    Picture flipped = picture;
    const auto rowBytes = static_cast<std::ptrdiff_t>(picture.width) * 4;
    for (std::ptrdiff_t row = 0; row < picture.height; ++row)
        std::copy_n(picture.rgba.begin() + row * rowBytes, rowBytes, flipped.rgba.end() - (row + 1) * rowBytes);
    return flipped;
}

Picture DividedByAlpha(Picture premultiplied) {
    std::vector<std::uint8_t>& rgba = premultiplied.rgba;
    for (std::size_t pixel = 0; pixel < rgba.size(); pixel += 4) {
        const int alpha = rgba[pixel + 3];
        if (alpha == 0) continue;
        for (std::size_t channel = pixel; channel < pixel + 3; ++channel)
            rgba[channel] = static_cast<std::uint8_t>(std::min(255, (rgba[channel] * 255 + alpha / 2) / alpha));
    }
    return premultiplied;
}

Picture ReadPicture(const std::filesystem::path& file) {
    return std::get<Picture>(ReadNamed(file, Depths::BytesOnly).picture);
}

AnyPicture ReadAnyPicture(const std::filesystem::path& file) { return ReadPictureFile(file).picture; }

bool IsPictureName(const std::filesystem::path& file) { return FormatOfName(file) != nullptr; }

void WritePicture(const Picture& picture, const std::filesystem::path& file) {
    cli::WriteFileWhole(file, EncodedFor(file, picture));
}

void WritePicture(const Picture16& picture, const std::filesystem::path& file) {
    cli::WriteFileWhole(file, EncodedFor(file, picture));
}

}  // namespace picture_io
