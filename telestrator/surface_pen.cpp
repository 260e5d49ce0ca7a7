#include "telestrator/surface_pen.h"

#include <limits>

#include "chalkpane/brush/basic_brush.h"

namespace chalkpane {
namespace {

bool FitsInt(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    return value >= double{Limits::min()} && value <= double{Limits::max()};  // false for NaN
}

Rect Stroke(TelestratorSurface& surface, StrokeStage stage, double x, double y) {
    constexpr double fullPressure = 1.0;
    switch (stage) {
        case StrokeStage::Begin:
            return surface.BeginStroke(x, y, fullPressure);
        case StrokeStage::Continue:
            return surface.ContinueStroke(x, y, fullPressure);
        case StrokeStage::End:
            return surface.EndStroke(x, y, fullPressure);
    }
    return {};
}

}  // namespace

bool IsPaintable(double x, double y) { return FitsInt(x) && FitsInt(y); }

Rect Paint(MemoryGuard& memory, TelestratorSurface* surface, StrokeStage stage, double x, double y) noexcept {
    Rect changed;
    if (surface != nullptr && IsPaintable(x, y)) memory.Run([&] { changed = Stroke(*surface, stage, x, y); });
    return changed;
}

PaintingAlone::PaintingAlone(TelestratorSurface* surface, SettledPixels* pixels)
    : brush_(surface != nullptr ? surface->brush.get() : nullptr), tiles_(pixels) {
    if (brush_ != nullptr) brush_->PaintAlone(&tiles_);
}

PaintingAlone::~PaintingAlone() {
    if (brush_ != nullptr) brush_->PaintAlone(nullptr);
}

bool ShapePen::SurelyMisses(const CanvasPosition& least, const CanvasPosition& most) const {
    return surface_ == nullptr ||
           (surface_->listener == nullptr && surface_->brush->SurelyMisses({least.x, least.y, most.x, most.y}));
}

void ShapePen::Line(double fromX, double fromY, double toX, double toY) const {
    Begin(fromX, fromY);
    End(toX, toY);
}

}  // namespace chalkpane
