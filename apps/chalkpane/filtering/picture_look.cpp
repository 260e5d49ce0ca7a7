#include "apps/chalkpane/filtering/picture_look.h"

#include <array>
#include <cstdio>
#include <utility>

#include "apps/chalkpane/filtering/picture_image.h"
#include "apps/chalkpane/values/value_parsing.h"
#include "chalkpane/image/pixel_format.h"
#include "cli/error.h"

namespace chalkpane::app {
namespace {

using picture_io::FormatRow;
using picture_io::PictureFormat;

std::array<std::uint8_t, 3> BackgroundOf(const PictureLook& look) {
    if (look.background.empty()) return {255, 255, 255};
    try {
        const Colour colour = ParseColour(look.background).colour;
        return {Narrow(colour.red), Narrow(colour.green), Narrow(colour.blue)};
    } catch (const cli::Error& error) {
        throw cli::Error("--background", {}, error.what());
    }
}

}  // namespace

const FormatRow& FormatFor(const std::filesystem::path& file) {
    if (file == "-") return RowOf(PictureFormat::Png);
    const FormatRow* const format = picture_io::FormatOfName(file);
    if (format == nullptr) throw cli::Error(file.string(), {}, picture_io::EndingsRule());
    return *format;
}

void RequireDepth(const std::filesystem::path& file, Depth depth) {
    const FormatRow& format = FormatFor(file);
    if (depth == Depth::Fourteen && !format.hasWords) throw cli::Error(file.string(), {}, WordsRefusal(format));
}

picture_io::WriteOptions OptionsFor(const PictureLook& look, const picture_io::PictureInfo* info) {
    picture_io::WriteOptions options;
    if (look.quality != 0) options.quality = look.quality;
    if (look.compression >= 0) options.compression = look.compression;
    if (info == nullptr) return options;
    options.followsInfo = true;
    options.halvesColour = info->halvesColour;
    options.info.isGrey = info->isGrey;
    options.info.hasAlpha = info->hasAlpha;
    if (!look.strips) options.info = *info;
    return options;
}

Background::Background(std::filesystem::path file, const PictureLook& look)
    : m_file(std::move(file)),
      m_format(FormatFor(m_file)),
      m_name(look.background.empty() ? "white" : look.background),
      m_colour(BackgroundOf(look)) {}

picture_io::AnyPicture Background::Behind(picture_io::AnyPicture picture) {
    const bool showsThrough = !m_format.hasAlpha && (m_format.hasClear ? ShowsInPart(picture) : ShowsThrough(picture));
    if (!showsThrough) return picture;
    m_isSeen = true;
    return OverColour(std::move(picture), m_colour,
                      m_format.hasClear ? picture_io::ClearPixels::Kept : picture_io::ClearPixels::Covered);
}

void Background::Tell() const {
    if (!m_isSeen) return;
    std::fprintf(stderr, "chalkpane: %s: %s has no alpha%s; the picture is laid on %s\n", m_file.c_str(),
                 WithArticle(m_format).c_str(), m_format.hasClear ? " but full and none" : "", m_name.c_str());
}

std::vector<std::uint8_t> EncodeImage(std::unique_ptr<Image> image, const std::filesystem::path& file,
                                      const PictureLook& look, const picture_io::PictureInfo* info) {
    RequireNoLoss();
    SetAlphaForm(*image, AlphaForm::Straight);
    auto picture = PictureOf(*image);
    image.reset();
    Background background(file, look);
    picture = background.Behind(std::move(picture));
    background.Tell();
    try {
        return picture_io::EncodePictureFile(picture, FormatFor(file), OptionsFor(look, info));
    } catch (const cli::Error& error) {
        throw cli::Error(file.string(), {}, error.what());
    }
}

void StageImage(std::unique_ptr<Image> image, const std::filesystem::path& file, picture_io::OutputFiles& outputs,
                const PictureLook& look, const picture_io::PictureInfo* info) {
    outputs.StageBytes(EncodeImage(std::move(image), file, look, info), file);
}

}  // namespace chalkpane::app
