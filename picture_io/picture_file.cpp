#include "picture_io/picture_file.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "cli/error.h"
#include "cli/file_bytes.h"
#include "picture_io/channels.h"
#include "picture_io/decoded.h"
#include "picture_io/exif.h"
#include "picture_io/gif_codec.h"
#include "picture_io/heif_codec.h"
#include "picture_io/jpeg_codec.h"
#include "picture_io/media_codec.h"
#include "picture_io/oriented.h"
#include "picture_io/png_codec.h"
#include "picture_io/png_info.h"
#include "picture_io/png_reader.h"
#include "picture_io/png_writer.h"

namespace picture_io {
namespace {

using Bytes = std::vector<std::uint8_t>;

AnyPicture DecodedPng(const Bytes& bytes, Depths depths, PictureInfo& info) {
    info = ReadPngInfo(bytes);
    if (depths == Depths::Any && HasWords(bytes)) return DecodePng16(bytes);
    return DecodePng(bytes);
}

Picture DecodedJpeg(const Bytes& bytes, PictureInfo& info) {
    JpegReader reader(bytes);
    info = reader.Info();
    Picture picture(reader.Width(), reader.Height());
    reader.Read(picture.rgba);
    return picture;
}

Bytes EncodedJpeg(const Picture& picture, const WriteOptions& options, bool isGrey) {
    JpegWriter writer(picture.width, picture.height, options, isGrey);
    writer.Write(picture);
    return writer.Finish();
}

Channels ChannelsFor(const AnyPicture& picture, const FormatRow& format, const WriteOptions& options) {
    const bool maybeGrey = !format.hasColour || (options.followsInfo && options.info.isGrey);
    const bool maybeOpaque = options.followsInfo && !options.info.hasAlpha;
    const Channels fitting =
        std::visit([&](const auto& any) { return FittingChannels(any, maybeGrey, maybeOpaque); }, picture);
    if (format.hasAlpha) return fitting;
    return fitting == Channels::Grey || fitting == Channels::GreyAlpha ? Channels::Grey : Channels::RGB;
}

Bytes EncodedPng(const AnyPicture& picture, const WriteOptions& options, Channels channels) {
    return std::visit(
        [&]<typename Word>(const BasicPicture<Word>& any) {
            PngWriter writer({any.width, any.height, channels, sizeof(Word) == 2}, options.info, options.compression);
            writer.Write(any);
            return writer.Finish();
        },
        picture);
}

bool IsHeif(const FormatRow& format) {
    return format.format == PictureFormat::Avif || format.format == PictureFormat::Heic;
}

PictureFile DecodedFrom(const Bytes& bytes, Depths depths, const std::filesystem::path& shownName) {
    try {
        return DecodePictureFile(bytes, depths);
    } catch (const cli::Error& error) {
        throw cli::Error(shownName.string(), {}, error.what());
    }
}

template <typename Word>
void CompositeOver(BasicPicture<Word>& picture, const std::array<std::uint8_t, 3>& colour, ClearPixels clear) {
    constexpr std::uint64_t full = static_cast<Word>(~Word{0});
    for (std::size_t i = 0; i < picture.rgba.size(); i += 4) {
        const std::uint64_t alpha = picture.rgba[i + 3];
        if (alpha == 0 && clear == ClearPixels::Kept) continue;
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const std::uint64_t below = colour[channel] * (full / 255);
            picture.rgba[i + channel] =
                static_cast<Word>((picture.rgba[i + channel] * alpha + below * (full - alpha) + full / 2) / full);
        }
        picture.rgba[i + 3] = static_cast<Word>(full);
    }
}

}  // namespace

PictureFile DecodePictureFile(const Bytes& bytes, Depths depths) {
    const FormatRow* const format = FormatOfBytes(bytes);
    if (format == nullptr) throw cli::Error("is no picture that can be read here (docs/pictures.md lists them)");
    PictureFile file;
    switch (format->format) {
        case PictureFormat::Png:
            file.picture = DecodedPng(bytes, depths, file.info);
            break;
        case PictureFormat::Jpeg:
            file.picture = DecodedJpeg(bytes, file.info);
            break;
        case PictureFormat::Gif:
            file.picture = DecodeGif(bytes, file.info);
            break;
        case PictureFormat::Avif:
        case PictureFormat::Heic:
            file.picture = DecodeHeif(bytes, *format, depths == Depths::Any, file.info);
            return file;
        default:
            file.picture = DecodeMedia(bytes, *format, depths == Depths::Any, file.info);
    }
    // A TIFF file is laid out like a block of EXIF, and says there how it stands.
    const Orientation orientation = OrientationIn(
        format->format == PictureFormat::Tiff ? std::span(bytes) : std::span(std::as_const(file.info.exif)));
    SetUpright(file.info.exif);
    file.picture = std::visit([&](auto& picture) -> AnyPicture { return Oriented(std::move(picture), orientation); },
                              file.picture);
    return file;
}

PictureFile ReadNamed(const std::filesystem::path& file, Depths depths) {
    return DecodedFrom(cli::ReadFileBytes(file), depths, file);
}

PictureFile ReadPictureFile(const std::filesystem::path& file) { return ReadNamed(file, Depths::Any); }

void RequireFitting(const FormatRow& format, bool hasWords) {
    if (hasWords && !format.hasWords) throw cli::Error(WordsRefusal(format));
}

bool FitsProfile(const Bytes& profile, bool isGrey) {
    constexpr std::size_t space = 16;
    constexpr std::string_view grey = "GRAY";
    const bool isForGrey =
        profile.size() >= space + grey.size() && std::equal(grey.begin(), grey.end(), profile.begin() + space);
    return isForGrey == isGrey;
}

Bytes EncodePictureFile(const AnyPicture& picture, const FormatRow& format, const WriteOptions& options) {
    RequireFitting(format, std::holds_alternative<Picture16>(picture));
    const Channels channels = ChannelsFor(picture, format, options);
    const bool isGrey = channels == Channels::Grey || channels == Channels::GreyAlpha;
    if (!format.hasColour && !isGrey)
        throw cli::Error(WithArticle(format) + " is grey, and this picture is not; a .ppm has colors");
    WriteOptions fitting = options;
    const bool staysGrey = isGrey && !IsHeif(format);  // which keeps colours alone here
    if (!FitsProfile(fitting.info.profile, staysGrey)) fitting.info.profile.clear();
    switch (format.format) {
        case PictureFormat::Png:
            return EncodedPng(picture, fitting, channels);
        case PictureFormat::Jpeg:
            return EncodedJpeg(std::get<Picture>(picture), fitting, isGrey);
        case PictureFormat::Gif:
            return EncodeGif(std::get<Picture>(picture));
        case PictureFormat::Avif:
        case PictureFormat::Heic:
            return EncodeHeif(std::get<Picture>(picture), format, fitting);
        default:
            return EncodeMedia(picture, format, options, channels);
    }
}

bool ShowsThrough(const AnyPicture& picture) {
    const Channels fitting = std::visit([](const auto& any) { return FittingChannels(any, false, true); }, picture);
    return fitting == Channels::RGBA;
}

bool ShowsInPart(const AnyPicture& picture) {
    return std::visit(
        []<typename Word>(const BasicPicture<Word>& any) {
            constexpr auto full = static_cast<Word>(~Word{0});
            for (std::size_t i = 3; i < any.rgba.size(); i += 4)
                if (any.rgba[i] != 0 && any.rgba[i] != full) return true;
            return false;
        },
        picture);
}

AnyPicture OverColour(AnyPicture picture, const std::array<std::uint8_t, 3>& colour, ClearPixels clear) {
    std::visit([&](auto& any) { CompositeOver(any, colour, clear); }, picture);
    return picture;
}

}  // namespace picture_io
