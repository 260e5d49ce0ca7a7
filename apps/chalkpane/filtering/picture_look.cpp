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

const FormatRow& FormatFor(const std::filesystem::path& file) {
    if (file == "-") return RowOf(PictureFormat::Png);
    const FormatRow* const format = picture_io::FormatOfName(file);
    if (format == nullptr) throw cli::Error(file.string(), {}, picture_io::EndingsRule());
    return *format;
}

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

void RequireDepth(const std::filesystem::path& file, std::int32_t depth) {
    const FormatRow& format = FormatFor(file);
    if (depth != 0 && !format.hasWords)
        throw cli::Error(file.string(), {}, WithArticle(format) + " has 8 bits a channel; 16 bits need a name in .png");
}

LookedAfter LookAfter(picture_io::AnyPicture picture, const std::filesystem::path& file, const PictureLook& look,
                      const picture_io::PictureInfo* info) {
    const FormatRow& format = FormatFor(file);
    const auto background = BackgroundOf(look);
    LookedAfter result{std::move(picture), {}};
    if (look.quality != 0) result.options.quality = look.quality;
    if (info != nullptr) {
        result.options.followsInfo = true;
        result.options.halvesColour = info->halvesColour;
        result.options.info.isGrey = info->isGrey;
        result.options.info.hasAlpha = info->hasAlpha;
        if (!look.strips) result.options.info = *info;
    }
    const bool isLaid =
        !format.hasAlpha && (format.hasClear ? ShowsInPart(result.picture) : ShowsThrough(result.picture));
    if (isLaid) {
        const auto clear = format.hasClear ? picture_io::ClearPixels::Kept : picture_io::ClearPixels::Covered;
        result.picture = OverColour(std::move(result.picture), background, clear);
        std::fprintf(stderr, "chalkpane: %s: %s has no alpha%s; the picture is laid on %s\n", file.c_str(),
                     WithArticle(format).c_str(), format.hasClear ? " but full and none" : "",
                     look.background.empty() ? "white" : look.background.c_str());
    }
    return result;
}

std::vector<std::uint8_t> EncodeImage(std::unique_ptr<Image> image, const std::filesystem::path& file,
                                      const PictureLook& look, const picture_io::PictureInfo* info) {
    RequireNoLoss();
    SetAlphaForm(*image, AlphaForm::Straight);
    auto picture = PictureOf(*image);
    image.reset();
    const LookedAfter ready = LookAfter(std::move(picture), file, look, info);
    try {
        return picture_io::EncodePictureFile(ready.picture, FormatFor(file), ready.options);
    } catch (const cli::Error& error) {
        throw cli::Error(file.string(), {}, error.what());
    }
}

void StageImage(std::unique_ptr<Image> image, const std::filesystem::path& file, picture_io::OutputFiles& outputs,
                const PictureLook& look, const picture_io::PictureInfo* info) {
    outputs.StageBytes(EncodeImage(std::move(image), file, look, info), file);
}

}  // namespace chalkpane::app
