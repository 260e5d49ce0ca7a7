#pragma once

#include <memory>
#include <span>

#include "chalkpane/image/image.h"
#include "telestrator/journal/ink_stroke.h"
#include "telestrator/telestrator_surface.h"

namespace chalkpane {

// A blank canvas as the telestrator's. Throws std::bad_alloc.
[[nodiscard]] Image NewInkCanvas();

// A brush that is set to whatever a stroke's steps were painted with. Throws std::bad_alloc.
class InkPen {
public:
    // Not owned; null: nothing is painted on.
    void SetTarget(Image* target);
    // Returns the pixels that changed.
    Rect Paint(const InkBrush& brush, StrokeStage stage, const CanvasPosition& at, double pressure);

private:
    void Use(const InkBrush& brush);

    TelestratorSurface surface_;  // for its brush; it has no canvas
    InkBrush current_;            // what the brush is set to
    bool isSet_ = false;          // `current_` says so
};

// Paints strokes again from their steps, whole or within a part of the canvas, to the same bytes.
//
// A dab's pixels depend on what lies under them and on nothing beside them, so a part comes out as it does of the
// whole. What allocates may throw std::bad_alloc: all of it.
class InkPainter {
public:
    // Paints on `canvas`, 8-bit premultiplied colour, but only inside `region`.
    void Paint(const InkStroke& stroke, Image& canvas, const Rect& region);

private:
    void Run(const InkStroke& stroke, Image& target);

    InkPen pen_;
    std::unique_ptr<Image> scratch_;  // of the canvas's size, for strokes that cannot be cut to a part
};

}  // namespace chalkpane
