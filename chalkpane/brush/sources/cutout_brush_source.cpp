#include "chalkpane/brush/sources/cutout_brush_source.h"

#include <algorithm>
#include <new>
#include <numbers>

#include "chalkpane/base/memory_loss.h"
#include "chalkpane/base/random.h"
#include "chalkpane/brush/image_loader.h"

namespace chalkpane {

CutoutBrushSource::CutoutBrushSource(const FileName& cutoutFile, Depth depth) {
    const auto picture = LoadImageFile(cutoutFile.string());
    if (picture) TakeFrames(*picture, depth);
}

CutoutBrushSource::CutoutBrushSource(const Image& cutout, Depth depth) { TakeFrames(cutout, depth); }

void CutoutBrushSource::TakeFrames(const Image& cutout, Depth depth) {
    const std::int64_t pixels = std::int64_t{cutout.Width()} * cutout.Height();
    if (cutout.Width() < 1 || cutout.Height() < 1 || pixels > Transformer::maximumPixels) return;
    try {
        frames = cutout.Convert(Rect(), depth);
        if (!frames) return;
        if (frames->IsMask()) {
            frameMask = std::make_unique<Image>(*frames);
        } else {
            frameMask = std::make_unique<Image>(Image::Mask(frames->Bounds(), depth));
            frames->CopyAlphaToMask(*frameMask);
        }
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
        frames = nullptr;
        frameMask = nullptr;
    }
}

CutoutBrushSource::Grid CutoutBrushSource::Frames() const {
    const std::int32_t down = std::max(rows, 1);
    const std::int32_t across = std::max(columns, 1);
    return {down, across, frames->Width() / across, frames->Height() / down};
}

// The area of the frame to show now.
Rect CutoutBrushSource::NextFrame(const Grid& grid) {
    const auto count = static_cast<std::uint64_t>(grid.rows) * static_cast<std::uint64_t>(grid.columns);
    std::int64_t column = 0;
    std::int64_t row = 0;
    const SelectionPolicy policy = GetSelectionPolicy();
    if (policy == SelectionPolicy::Random) {
        column = Random() % grid.columns;
        row = Random() % grid.rows;
    } else {
        const std::uint64_t period = policy == SelectionPolicy::ForwardAndBack ? count * 2 - 2 : count;
        if (policy <= SelectionPolicy::ForwardAndBack)
            frameIndex = static_cast<std::uint32_t>((std::uint64_t{frameIndex} + 1) % period);
        const std::uint64_t shown = frameIndex % period;
        const auto frame = static_cast<std::int64_t>(shown < count ? shown : period - shown);
        column = frame % grid.columns;
        row = frame / grid.columns;
    }
    const auto left = static_cast<std::int32_t>(frames->x0 + column * grid.width);
    const auto top = static_cast<std::int32_t>(frames->y1 - row * grid.height);
    return {left, top - (grid.height - 1), left + (grid.width - 1), top};
}

bool CutoutBrushSource::MakeDab(double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                                std::unique_ptr<Image>& maskOut) {
    if (!frames) return false;
    const Grid grid = Frames();
    if (grid.width < 1 || grid.height < 1) return false;
    const Rect cell = grid.IsWhole() ? frames->Bounds() : NextFrame(grid);
    // Rotated as all masks are: clockwise where y grows upward.
    transformer.SetMatrix(Matrix3::Translation(-(cell.x0 + cell.Width() * 0.5), -(cell.y0 + cell.Height() * 0.5)) *
                          Matrix3::Rotation(-angle * std::numbers::pi / 180) * Matrix3::Translation(x, y));
    const auto placed = [&](const Image& whole) {
        Rect rect;
        return transformer.Apply(grid.IsWhole() ? whole : *whole.Convert(cell, whole.GetDepth()), rect);
    };
    auto colour = placed(*frames);
    if (!colour->IsValid()) return false;
    if (frameMask) maskOut = placed(*frameMask);
    colourOut = std::move(colour);
    return true;
}

std::unique_ptr<Image> CutoutBrushSource::MakePlainMask(double x, double y) {
    if (!frameMask) return nullptr;
    const auto left = WholePixels(x - frameMask->Width() * 0.5);
    const auto bottom = WholePixels(y - frameMask->Height() * 0.5);
    if (!left || !bottom) return nullptr;
    auto mask = std::make_unique<Image>(*frameMask);
    mask->MoveTo(*left, *bottom);
    return mask;
}

double CutoutBrushSource::GetSize() const {
    if (!frames) return 20.0;
    const Grid grid = Frames();
    return std::max(grid.width, grid.height);
}

void CutoutBrushSource::GetDabRect(Rect& out) const {
    out = Rect();
    if (!frames) return;
    const Grid grid = Frames();
    out = *frames;
    if (grid.IsWhole()) return;
    out.SetSize(grid.width, grid.height);
    out.MoveTo(frames->x0, frames->y0);
}

}  // namespace chalkpane
