#pragma once

#include <cstdint>

#include "chalkpane/composite/settled_tiles.h"
#include "telestrator/geometry.h"
#include "telestrator/memory_guard.h"
#include "telestrator/telestrator_surface.h"

namespace chalkpane {

// Every stroke of the telestrator goes through here, so that neither a wild position nor exhausted memory gets further.

// True: an int can hold both coordinates, so a brush can work with them. False for NaN.
[[nodiscard]] bool IsPaintable(double x, double y);

// One step of a stroke at full pressure, in canvas pixels. Returns the changed pixels. Paints nothing and returns the
// empty rectangle without a surface, at a position that is not paintable, and when memory runs out, which `memory`
// counts.
Rect Paint(MemoryGuard& memory, TelestratorSurface* surface, StrokeStage stage, double x, double y) noexcept;

// While it lives nobody but its brush writes to a surface's canvas, which so may pass over what changes nothing.
class PaintingAlone {
public:
    // Both borrowed. surface: null: there is nothing to do.
    //   pixels  room to look closer; null: nobody does
    PaintingAlone(TelestratorSurface* surface, SettledPixels* pixels);
    ~PaintingAlone();
    PaintingAlone(const PaintingAlone&) = delete;
    PaintingAlone& operator=(const PaintingAlone&) = delete;
    PaintingAlone(PaintingAlone&&) = delete;
    PaintingAlone& operator=(PaintingAlone&&) = delete;

private:
    BasicBrush* brush_;  // not owned
    SettledTiles tiles_;
};

// Draws recognised and smoothed lines on one surface.
class ShapePen {
public:
    // Both are borrowed; without a surface nothing is drawn.
    ShapePen(MemoryGuard& memory, TelestratorSurface* surface, double aspect)
        : memory_(&memory), surface_(surface), aspect_(aspect) {}

    [[nodiscard]] MemoryGuard& Memory() const { return *memory_; }
    [[nodiscard]] double Aspect() const { return aspect_; }

    // In the space of the stored stroke points, where y is divided by the aspect.
    void Begin(double x, double y) const { Draw(StrokeStage::Begin, x, y * aspect_); }
    void Continue(double x, double y) const { Draw(StrokeStage::Continue, x, y * aspect_); }
    void End(double x, double y) const { Draw(StrokeStage::End, x, y * aspect_); }
    void Line(double fromX, double fromY, double toX, double toY) const;

    // In canvas pixels.
    void Draw(StrokeStage stage, double x, double y) const { Paint(*memory_, surface_, stage, x, y); }

    // True: a stroke whose vertices all lie from `least` to `most` paints nothing, and nobody listens. In canvas
    // pixels, once a stroke has begun.
    [[nodiscard]] bool SurelyMisses(const CanvasPosition& least, const CanvasPosition& most) const;

private:
    MemoryGuard* memory_;          // not owned
    TelestratorSurface* surface_;  // not owned
    double aspect_;
};

}  // namespace chalkpane
