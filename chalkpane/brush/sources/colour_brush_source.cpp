#include "chalkpane/brush/sources/colour_brush_source.h"

#include <algorithm>
#include <bit>

#include "chalkpane/brush/sources/dab_colour.h"

namespace chalkpane {

namespace {

// KEEP: 8 bits take the upper bits of the word, low byte of what is beyond full scale.
DabPixel PixelOf(const Colour& colour, Depth depth) {
    if (depth == Depth::Fourteen) return {colour.blue, colour.green, colour.red, PixelFormat14::fullScale};
    const auto narrow = [](std::uint16_t word) { return static_cast<std::uint16_t>(word >> 6); };
    return {narrow(colour.blue), narrow(colour.green), narrow(colour.red), PixelFormat8::fullScale};
}

std::uint32_t PixelInMemory8(const Colour& colour) {
    const DabPixel pixel = PixelOf(colour, Depth::Eight);
    return std::bit_cast<std::uint32_t>(
        std::array<std::uint8_t, 4>{static_cast<std::uint8_t>(pixel[0]), static_cast<std::uint8_t>(pixel[1]),
                                    static_cast<std::uint8_t>(pixel[2]), static_cast<std::uint8_t>(pixel[3])});
}

}  // namespace

ColourBrushSource::ColourBrushSource(ColourUse use)
    : pixel8(PixelInMemory8(colour)), erasing(use == ColourUse::Erase) {}

void ColourBrushSource::SetColour(const Colour& newColour) {
    if (!(newColour == colour)) filled = nullptr;
    colour = newColour;
    pixel8 = PixelInMemory8(colour);
}

bool ColourBrushSource::MakeDab(double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                                std::unique_ptr<Image>& maskOut) {
    if (!profile) return false;
    if (ReusePickup(paintPickup, x, y, angle, colourOut, maskOut)) return colourOut != nullptr;
    maskOut = GetMask(x, y, angle);
    if (!maskOut) return false;
    colourOut = ColourImage(*maskOut);
    StorePickup(paintPickup, *colourOut, x, y, angle);
    return true;
}

void ColourBrushSource::Prepare(std::int32_t margin, GraphValue* graph, const Matrix3& newMatrix) {
    ProfiledBrushSource::Prepare(margin, graph, newMatrix);
    roundProfile = dynamic_cast<const RoundBrushProfile*>(profile.get());
    if (roundProfile != nullptr) dabRects.Take(*roundProfile);
    TakeSmallMasks();
}

void ColourBrushSource::TakeSmallMasks() {
    hasSmallDabs = roundProfile != nullptr && roundProfile->BaseMask() != nullptr && !erasing;
    for (std::size_t copy = 0; hasSmallDabs && copy < smallMasks.ofCopy.size(); ++copy) {
        const Image* const mask = roundProfile->Shifted(copy / 8, copy % 8);
        hasSmallDabs = mask != nullptr && smallMasks.ofCopy[copy].Take(*mask);
    }
    if (hasSmallDabs) smallMasks.MeasureRects(roundProfile->Offset(), roundProfile->KeepsPlaces());
}

bool ColourBrushSource::FindDab(double x, double y, ColourDab& dab) {
    const auto [mask, rect] = roundProfile->FindMask(x, y);
    if (mask == nullptr) return false;
    FillFor(*mask);
    dab = {filled.get(), mask, rect};
    return true;
}

// Makes `filled` large enough.
void ColourBrushSource::FillFor(const Image& mask) {
    const std::int32_t width = mask.Width();
    const std::int32_t height = mask.Height();
    if (filled && filled->GetDepth() == mask.GetDepth() && filled->Width() >= width && filled->Height() >= height)
        return;
    const std::int32_t keptWidth = filled ? filled->Width() : 0;
    const std::int32_t keptHeight = filled ? filled->Height() : 0;
    filled = std::make_unique<Image>(
        Image::Colour(std::max(width, keptWidth), std::max(height, keptHeight), mask.GetDepth(), AlphaForm::Straight));
    FillWithPixel(*filled, PixelOf(colour, mask.GetDepth()));
}

// The colour over the mask's rectangle.
std::unique_ptr<Image> ColourBrushSource::ColourImage(const Image& mask) {
    FillFor(mask);
    auto dab = std::make_unique<Image>(*filled);
    static_cast<Rect&>(*dab) = mask;  // one colour everywhere, so any part of the kept image will do
    return dab;
}

}  // namespace chalkpane
