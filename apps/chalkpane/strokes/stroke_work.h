#pragma once

#include <cstdint>
#include <span>

#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/brush/spline_iterator.h"
#include "chalkpane/image/pixel_format.h"

namespace chalkpane::app {

// How fast a brush makes work of a path.
struct BrushPace {
    double spacing = 0.0;         // canvas pixels between dabs, at least; below or at 0 a dab falls wherever it can
    bool shortens = false;        // to the length of a segment that is shorter
    double pixels = 1.0;          // of a dab, each as often as something passes over it
    double preparedPixels = 0.0;  // of what was built when the brush was prepared
};

// Of a brush that is prepared, on a canvas of that depth.
[[nodiscard]] BrushPace PaceOf(BasicBrush& brush, Depth depth);

// No fewer dabs than a stroke through these points can have.
[[nodiscard]] double MostDabs(std::span<const StrokePoint> points, const BrushPace& pace);

// What a file may ask for, so that no file, however small, keeps the program busy for minutes.
class WorkLimit {
public:
    // What is just below takes some seconds on one processor of today.
    static constexpr double mostDabs = 5e6;
    static constexpr double mostPixels = 2e10;

    // The brush was prepared. Throws cli::Error that begins with `place`.
    void CountBrush(const BrushPace& pace, const std::string& place);
    // The stroke is about to be painted. Throws likewise.
    void CountStroke(std::span<const StrokePoint> points, const BrushPace& pace, const std::string& place);

private:
    void Check(const std::string& place) const;

    double m_dabs = 0.0;
    double m_pixels = 0.0;
};

}  // namespace chalkpane::app
