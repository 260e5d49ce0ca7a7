#include "host/picture.h"

#include <algorithm>
#include <cctype>

#include "host/error.h"
#include "host/file_bytes.h"
#include "host/jpeg_codec.h"
#include "host/png_codec.h"

namespace kel {
namespace {

enum class PictureFormat { None, Png, Jpeg };

PictureFormat FormatOfName(const std::filesystem::path& file) {
    std::string ending = file.extension().string();
    std::ranges::transform(ending, ending.begin(), [](unsigned char letter) { return std::tolower(letter); });
    if (ending == ".png") return PictureFormat::Png;
    return ending == ".jpg" || ending == ".jpeg" ? PictureFormat::Jpeg : PictureFormat::None;
}

template <std::size_t N>
bool StartsWith(const std::vector<std::uint8_t>& bytes, const std::array<std::uint8_t, N>& start) {
    return bytes.size() >= N && std::equal(start.begin(), start.end(), bytes.begin());
}

PictureFormat FormatOfBytes(const std::vector<std::uint8_t>& bytes) {
    constexpr std::array<std::uint8_t, 8> pngStart{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    constexpr std::array<std::uint8_t, 3> jpegStart{0xFF, 0xD8, 0xFF};
    if (StartsWith(bytes, pngStart)) return PictureFormat::Png;
    return StartsWith(bytes, jpegStart) ? PictureFormat::Jpeg : PictureFormat::None;
}

}  // namespace

Picture::Picture(std::int32_t pictureWidth, std::int32_t pictureHeight) : width(pictureWidth), height(pictureHeight) {
    if (std::min(width, height) < 1 || std::max(width, height) > largestPictureSide)
        throw Error("a picture of " + std::to_string(width) + " x " + std::to_string(height) +
                    " pixels: sides of 1 to " + std::to_string(largestPictureSide) + " are possible");
    rgba.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
}

std::size_t Picture::Offset(std::int32_t x, std::int32_t y) const {
    return (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) * 4;
}

std::array<std::uint8_t, 4> Picture::At(std::int32_t x, std::int32_t y) const {
    const std::size_t at = Offset(x, y);
    return {rgba[at], rgba[at + 1], rgba[at + 2], rgba[at + 3]};
}

void Picture::Set(std::int32_t x, std::int32_t y, const std::array<std::uint8_t, 4>& pixel) {
    std::copy(pixel.begin(), pixel.end(), rgba.begin() + static_cast<std::ptrdiff_t>(Offset(x, y)));
}

Picture Flipped(const Picture& picture) {
    Picture flipped = picture;
    const auto rowBytes = static_cast<std::ptrdiff_t>(picture.width) * 4;
    for (std::ptrdiff_t row = 0; row < picture.height; ++row)
        std::copy_n(picture.rgba.begin() + row * rowBytes, rowBytes, flipped.rgba.end() - (row + 1) * rowBytes);
    return flipped;
}

Picture ReadPicture(const std::filesystem::path& file) {
    const std::vector<std::uint8_t> bytes = ReadFileBytes(file);
    try {
        switch (FormatOfBytes(bytes)) {
            case PictureFormat::Png:
                return DecodePng(bytes);
            case PictureFormat::Jpeg:
                return DecodeJpeg(bytes);
            default:
                throw Error("is neither a PNG nor a JPEG picture");
        }
    } catch (const Error& error) {
        throw Error(file.string(), {}, error.what());
    }
}

bool IsPictureName(const std::filesystem::path& file) { return FormatOfName(file) != PictureFormat::None; }

void WritePicture(const Picture& picture, const std::filesystem::path& file) {
    const PictureFormat format = FormatOfName(file);
    if (format == PictureFormat::None) throw Error(file.string(), {}, "pictures end in .png, .jpg or .jpeg");
    std::vector<std::uint8_t> bytes;
    try {
        bytes = format == PictureFormat::Png ? EncodePng(picture) : EncodeJpeg(picture);
    } catch (const Error& error) {
        throw Error(file.string(), {}, error.what());
    }
    WriteFileWhole(file, bytes);
}

}  // namespace kel
