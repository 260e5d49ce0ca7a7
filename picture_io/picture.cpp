#include "picture_io/picture.h"

#include <algorithm>
#include <cctype>

#include "cli/error.h"
#include "cli/file_bytes.h"
#include "picture_io/jpeg_codec.h"
#include "picture_io/png16_codec.h"
#include "picture_io/png_codec.h"

namespace picture_io {
namespace {

using Bytes = std::vector<std::uint8_t>;

enum class PictureFormat { None, Png, Jpeg };

PictureFormat FormatOfName(const std::filesystem::path& file) {
    std::string ending = file.extension().string();
    std::ranges::transform(ending, ending.begin(), [](unsigned char letter) { return std::tolower(letter); });
    if (ending == ".png") return PictureFormat::Png;
    return ending == ".jpg" || ending == ".jpeg" ? PictureFormat::Jpeg : PictureFormat::None;
}

template <std::size_t N>
bool StartsWith(const Bytes& bytes, const std::array<std::uint8_t, N>& start) {
    return bytes.size() >= N && std::equal(start.begin(), start.end(), bytes.begin());
}

PictureFormat FormatOfBytes(const Bytes& bytes) {
    constexpr std::array<std::uint8_t, 8> pngStart{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    constexpr std::array<std::uint8_t, 3> jpegStart{0xFF, 0xD8, 0xFF};
    if (StartsWith(bytes, pngStart)) return PictureFormat::Png;
    return StartsWith(bytes, jpegStart) ? PictureFormat::Jpeg : PictureFormat::None;
}

// Calls `call` and names the file in what it throws.
template <typename Call>
auto Naming(const std::filesystem::path& file, Call call) {
    try {
        return call();
    } catch (const cli::Error& error) {
        throw cli::Error(file.string(), {}, error.what());
    }
}

template <typename DecodePngBytes>
auto Decoded(const std::filesystem::path& file, DecodePngBytes decodePng) {
    using Result = decltype(decodePng(Bytes()));
    const Bytes bytes = cli::ReadFileBytes(file);
    return Naming(file, [&]() -> Result {
        switch (FormatOfBytes(bytes)) {
            case PictureFormat::Png:
                return decodePng(bytes);
            case PictureFormat::Jpeg:
                return DecodeJpeg(bytes);
            default:
                throw cli::Error("is neither a PNG nor a JPEG picture");
        }
    });
}

template <typename Encode>
void WriteEncoded(const std::filesystem::path& file, Encode encode) {
    const PictureFormat format = FormatOfName(file);
    if (format == PictureFormat::None) throw cli::Error(file.string(), {}, "pictures end in .png, .jpg or .jpeg");
    cli::WriteFileWhole(file, Naming(file, [&] { return encode(format); }));
}

}  // namespace

template <typename Word>
BasicPicture<Word>::BasicPicture(std::int32_t pictureWidth, std::int32_t pictureHeight)
    : width(pictureWidth), height(pictureHeight) {
    if (std::min(width, height) < 1 || std::max(width, height) > largestPictureSide)
        throw cli::Error("a picture of " + std::to_string(width) + " x " + std::to_string(height) +
                         " pixels: sides of 1 to " + std::to_string(largestPictureSide) + " are possible");
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

Picture ReadPicture(const std::filesystem::path& file) { return Decoded(file, DecodePng); }

AnyPicture ReadAnyPicture(const std::filesystem::path& file) {
    return Decoded(file, [](const Bytes& bytes) -> AnyPicture {
        if (HasWords(bytes)) return DecodePng16(bytes);
        return DecodePng(bytes);
    });
}

bool IsPictureName(const std::filesystem::path& file) { return FormatOfName(file) != PictureFormat::None; }

void WritePicture(const Picture& picture, const std::filesystem::path& file) {
    WriteEncoded(file, [&](PictureFormat format) {
        return format == PictureFormat::Png ? EncodePng(picture) : EncodeJpeg(picture);
    });
}

void WritePicture(const Picture16& picture, const std::filesystem::path& file) {
    WriteEncoded(file, [&](PictureFormat format) {
        if (format != PictureFormat::Png) throw cli::Error("a JPEG has 8 bits a channel; 16 bits need a name in .png");
        return EncodePng16(picture);
    });
}

}  // namespace picture_io
