#pragma once

#include "chalkpane/image/rect.h"
#include "module/geometry.h"
#include "module/telestrator_surface.h"

namespace chalkpane {

// Every stroke of the plug-in goes through here, so that neither a wild position nor exhausted memory gets further.

enum class StrokeStage { Begin, Continue, End };

// True: both coordinates are numbers that an int can hold, so a brush can work with them.
[[nodiscard]] bool IsPaintable(double x, double y);

// One step of a stroke at full pressure, in canvas pixels. Returns the changed pixels. Paints nothing and returns the
// empty rectangle without a surface, at a position that is not paintable, and when memory runs out.
Rect Paint(TelestratorSurface* surface, StrokeStage stage, double x, double y) noexcept;

// Draws recognised and smoothed lines given in the space of the stored stroke points, where y is divided by `aspect`.
class ShapePen {
public:
    ShapePen(TelestratorSurface* surface, double aspect) : surface_(surface), aspect_(aspect) {}

    void Begin(double x, double y) const { Draw(StrokeStage::Begin, x, y); }
    void Continue(double x, double y) const { Draw(StrokeStage::Continue, x, y); }
    void End(double x, double y) const { Draw(StrokeStage::End, x, y); }
    void Line(double fromX, double fromY, double toX, double toY) const;

private:
    void Draw(StrokeStage stage, double x, double y) const { Paint(surface_, stage, x, y * aspect_); }

    TelestratorSurface* surface_;  // not owned
    double aspect_;
};

}  // namespace chalkpane
