#include "chalkpane/brush/sources/image_brush_source.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "chalkpane/composite/paste_span.h"

namespace chalkpane {

namespace {

// The weights of a pixel's neighbours, in parts of 255.
struct Weights {
    std::int32_t fx;
    std::int32_t fy;
    std::int32_t cx;
    std::int32_t cy;
    Weights(double fractionX, double fractionY)
        : fx(std::abs(static_cast<std::int32_t>(fractionX * 256))),
          fy(std::abs(static_cast<std::int32_t>(fractionY * 256))),
          cx(255 - fx),
          cy(255 - fy) {}
};

template <typename F>
constexpr typename F::Channel opaqueBlack[4] = {0, 0, 0, F::fullScale};

// One row of a dab: pixels of the picture and of its row below, weighed with their neighbours on the right.
// KEEP: beyond the right and the bottom edge the picture goes on in opaque black, and the weights add up to 255 of 256,
// so that a picture read between its pixels darkens a little.
template <typename F>
void ReadBetweenPixels(const Image& picture, std::int32_t x, std::int32_t y, const Weights& w,
                       typename F::Channel* target, std::int32_t count) {
    using Channel = typename F::Channel;
    const auto at = [&](std::int64_t column, std::int64_t row) {
        if (column > picture.x1 || row < picture.y0) return &opaqueBlack<F>[0];
        return reinterpret_cast<const Channel*>(
            picture.Address(static_cast<std::int32_t>(column), static_cast<std::int32_t>(row)));
    };
    const std::int64_t below = std::int64_t{y} - 1;
    for (std::int64_t column = x; column < std::int64_t{x} + count; ++column, target += 4) {
        const Channel* a = at(column + 1, below);
        const Channel* b = at(column, below);
        const Channel* c = at(column, y);
        const Channel* d = at(column + 1, y);
        for (int channel = 0; channel < 4; ++channel) {
            const std::int32_t lower = a[channel] * w.fx + b[channel] * w.cx;
            const std::int32_t upper = c[channel] * w.cx + d[channel] * w.fx;
            target[channel] = static_cast<Channel>((std::int64_t{lower} * w.fy + std::int64_t{upper} * w.cy) >> 16);
        }
    }
}

}  // namespace

std::optional<ImageBrushSource::ReadOffset> ImageBrushSource::OffsetAt(double x, double y) const {
    if (!followsBrush) return ReadOffset();
    const Point2 here = matrix.Transform(x, y);
    const Point2 there = matrix.Transform(x + offset.x, y + offset.y);
    const double shiftX = there.x - here.x;
    const double shiftY = there.y - here.y;
    const auto wholeX = WholePixels(shiftX);
    const auto wholeY = WholePixels(shiftY);
    if (!wholeX || !wholeY) return std::nullopt;
    return ReadOffset{*wholeX, *wholeY, shiftX - *wholeX, shiftY - *wholeY};
}

bool ImageBrushSource::BeginDab(Pickup& kept, double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                                std::unique_ptr<Image>& maskOut, bool& isNew) {
    isNew = false;
    if (!profile) return false;
    if (ReusePickup(kept, x, y, angle, colourOut, maskOut)) return colourOut != nullptr;
    maskOut = GetMask(x, y, angle);
    if (!maskOut) return false;
    colourOut = std::make_unique<Image>(Image::Colour(maskOut->Bounds(), maskOut->GetDepth(), AlphaForm::Straight));
    StorePickup(kept, *colourOut, x, y, angle);
    isNew = true;
    return true;
}

const Image* ImageBrushSource::AtDepth(std::unique_ptr<Image>& picture, Depth depth) {
    if (!picture || picture->IsMask()) return nullptr;
    if (picture->GetDepth() != depth) picture = picture->Convert(Rect(), depth);
    return picture.get();
}

bool ImageBrushSource::MakeDab(double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                               std::unique_ptr<Image>& maskOut) {
    return MakeDabFrom(sourceImage, paintPickup, x, y, angle, colourOut, maskOut);
}

bool ImageBrushSource::MakeMaskDab(double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                                   std::unique_ptr<Image>& maskOut) {
    return MakeDabFrom(maskSourceImage, maskPickup, x, y, angle, colourOut, maskOut);
}

bool ImageBrushSource::MakeDabFrom(std::unique_ptr<Image>& picture, Pickup& kept, double x, double y, double angle,
                                   std::unique_ptr<Image>& colourOut, std::unique_ptr<Image>& maskOut) {
    bool isNew = false;
    if (!BeginDab(kept, x, y, angle, colourOut, maskOut, isNew)) return false;
    const Image* source = isNew ? AtDepth(picture, colourOut->GetDepth()) : nullptr;
    const auto read = source != nullptr ? OffsetAt(x, y) : std::nullopt;
    if (!read) return true;
    Rect wanted = *colourOut;
    wanted.Translate(read->x, read->y);
    const bool isInPlane = wanted.Width() == colourOut->Width() && wanted.Height() == colourOut->Height();
    const Rect overlap = isInPlane ? wanted.Intersection(*source) : Rect();
    const bool isBetween = read->fractionX != 0.0 || read->fractionY != 0.0;
    const Weights weights(read->fractionX, read->fractionY);
    WithFormatOf(*source, [&]<typename F>(F) {
        using Channel = typename F::Channel;
        for (std::int32_t row = 0; row < overlap.Height(); ++row) {
            const std::int32_t y1 = overlap.y0 + row;
            auto* target = reinterpret_cast<Channel*>(colourOut->Address(overlap.x0 - read->x, y1 - read->y));
            const auto* from = reinterpret_cast<const Channel*>(source->Address(overlap.x0, y1));
            if (isBetween)
                ReadBetweenPixels<F>(*source, overlap.x0, y1, weights, target, overlap.Width());
            else
                std::copy_n(from, std::ptrdiff_t{4} * overlap.Width(), target);
        }
    });
    return true;
}

}  // namespace chalkpane
