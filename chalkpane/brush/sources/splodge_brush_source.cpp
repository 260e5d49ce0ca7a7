#include "chalkpane/brush/sources/splodge_brush_source.h"

#include "chalkpane/brush/sources/dab_colour.h"
#include "chalkpane/composite/paste_span.h"

namespace chalkpane {

namespace {

// The pixel with its colours scaled by its alpha.
template <typename F>
DabPixel ScaledByAlpha(const typename F::Channel* pixel) {
    const auto alpha = pixel[3];
    if (alpha == 0) return {};
    const auto factor = static_cast<float>(alpha / static_cast<double>(F::fullScale));
    const auto scaled = [&](typename F::Channel colour) {
        return static_cast<std::uint16_t>(static_cast<std::int32_t>(colour * static_cast<double>(factor) + 0.5));
    };
    return {scaled(pixel[0]), scaled(pixel[1]), scaled(pixel[2]), alpha};
}

}  // namespace

bool SplodgeBrushSource::MakeDab(double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                                 std::unique_ptr<Image>& maskOut) {
    bool isNew = false;
    if (!BeginDab(paintPickup, x, y, angle, colourOut, maskOut, isNew)) return false;
    const Image* source = isNew ? AtDepth(sourceImage, colourOut->GetDepth()) : nullptr;
    const auto read = source != nullptr ? OffsetAt(x, y) : std::nullopt;
    if (!read) return true;
    const std::int64_t middleX = std::int64_t{colourOut->x0} + colourOut->Width() / 2 + read->x;
    const std::int64_t middleY = std::int64_t{colourOut->y0} + colourOut->Height() / 2 + read->y;
    if (middleX < source->x0 || middleX > source->x1 || middleY < source->y0 || middleY > source->y1) return true;
    WithFormatOf(*source, [&]<typename F>(F) {
        const auto* pixel = reinterpret_cast<const typename F::Channel*>(
            source->Address(static_cast<std::int32_t>(middleX), static_cast<std::int32_t>(middleY)));
        FillWithPixel(*colourOut, ScaledByAlpha<F>(pixel));
    });
    return true;
}

}  // namespace chalkpane
