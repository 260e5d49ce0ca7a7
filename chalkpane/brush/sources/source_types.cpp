#include "chalkpane/brush/sources/source_types.h"

#include <array>
#include <cstddef>

#include "chalkpane/brush/sources/colour_brush_source.h"
#include "chalkpane/brush/sources/cutout_brush_source.h"
#include "chalkpane/brush/sources/image_brush_source.h"
#include "chalkpane/brush/sources/splodge_brush_source.h"

namespace chalkpane {

namespace {

template <ColourUse use>
std::unique_ptr<BrushSource> MakeColour(const FileName& /*cutoutFile*/, Depth /*targetDepth*/) {
    return std::make_unique<ColourBrushSource>(use);
}
template <typename Source, ImageFollows follows>
std::unique_ptr<BrushSource> MakeReading(const FileName& /*cutoutFile*/, Depth /*targetDepth*/) {
    return std::make_unique<Source>(follows);
}
std::unique_ptr<BrushSource> MakeCutout(const FileName& cutoutFile, Depth targetDepth) {
    return std::make_unique<CutoutBrushSource>(cutoutFile, targetDepth);
}

constexpr auto makeImage = &MakeReading<ImageBrushSource, ImageFollows::Canvas>;
constexpr auto makeClone = &MakeReading<ImageBrushSource, ImageFollows::Brush>;
constexpr auto makeSplodge = &MakeReading<SplodgeBrushSource, ImageFollows::Brush>;
constexpr auto over = PasteBehaviour::Over;
constexpr auto replace = PasteBehaviour::Replace;

constexpr std::array sourceTypes{
    SourceTypeRow{SourceType::Colour, "Color", SourceNeeds::Nothing, over, &MakeColour<ColourUse::Paint>},
    SourceTypeRow{SourceType::Clone, "Clone", SourceNeeds::Picture, over, makeClone},
    SourceTypeRow{SourceType::Image, "Image", SourceNeeds::Picture, over, makeImage},
    SourceTypeRow{SourceType::Cutout, "Cutout", SourceNeeds::CutoutFile, over, &MakeCutout},
    SourceTypeRow{SourceType::Splodge, "Splodge", SourceNeeds::Picture, over, makeSplodge},
    SourceTypeRow{SourceType::Eraser, "Eraser", SourceNeeds::Nothing, over, &MakeColour<ColourUse::Erase>},
    SourceTypeRow{SourceType::Replace, "Replace", SourceNeeds::Picture, replace, makeImage},
    SourceTypeRow{SourceType::ReplaceToo, "", SourceNeeds::Picture, replace, makeImage},
    SourceTypeRow{SourceType::SplodgeToo, "", SourceNeeds::Picture, over, makeSplodge},
};
static_assert(
    [] {
        for (std::size_t i = 0; i < sourceTypes.size(); ++i)
            if (static_cast<std::size_t>(sourceTypes[i].type) != i) return false;
        return true;
    }(),
    "a stored value is the index of its row");

}  // namespace

std::span<const SourceTypeRow> SourceTypes() { return sourceTypes; }

const SourceTypeRow& SourceTypeOf(std::uint8_t stored) {
    return sourceTypes[stored < sourceTypes.size() ? stored : std::size_t{0}];
}

std::unique_ptr<BrushSource> MakeBrushSource(std::uint8_t sourceType, const FileName& cutoutFile, Depth targetDepth) {
    auto source = SourceTypeOf(sourceType).make(cutoutFile, targetDepth);
    source->SetTargetDepth(targetDepth);
    return source;
}

std::unique_ptr<BrushSource> MakeCutoutSource(const Image& cutout, Depth targetDepth) {
    auto source = std::make_unique<CutoutBrushSource>(cutout, targetDepth);
    source->SetTargetDepth(targetDepth);
    return source;
}

}  // namespace chalkpane
