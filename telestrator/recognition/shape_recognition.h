#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "telestrator/geometry.h"
#include "telestrator/surface_pen.h"
#include "telestrator/telestrator_settings.h"

namespace chalkpane {

// Three recognisers that look at the points of a stroke and, when one accepts, draw a clean shape in its place.
//
// Points are in canvas pixels, y divided by the pen's aspect, and about the brush's width apart. The distance tolerance
// of all is that width: a thicker pen may be drawn more loosely. The rows of the searches run on the workers; the
// result does not depend on their number.

// No hand draws that many points; the searches take up to the square of it.
constexpr std::int32_t recognitionPointLimit = 20000;

// The circle search's counters: centre column, centre row, radius bin.
constexpr std::size_t houghCells = 256;
constexpr std::size_t houghCounters = houghCells * houghCells * houghCells;

// All of it is borrowed for the call.
struct ShapeInput {
    const TelestratorSettings& settings;
    std::span<const Vector3> points;    // without any nothing is recognised
    std::span<std::uint32_t> counters;  // houghCounters of them; what they hold is of no meaning
    ShapePen pen;
};

// Each returns true when it accepted and drew; it draws nothing otherwise, and declines with its own switch off.
[[nodiscard]] bool RecognizeEllipse(const ShapeInput& input);
[[nodiscard]] bool RecognizeCircle(const ShapeInput& input);
[[nodiscard]] bool RecognizeCross(const ShapeInput& input);

// True: seen from `centre` there are points in each of the four quadrants. A point on an axis counts for none.
[[nodiscard]] bool SurroundsOnAllSides(std::span<const Vector3> points, const Vector3& centre);

}  // namespace chalkpane
