#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "apps/chalkpane/strokes/brush_description.h"
#include "chalkpane/brush/spline_iterator.h"
#include "chalkpane/image/pixel_format.h"

namespace chalkpane::app {

// One movement of the brush, from press to release.
struct Stroke {
    // In pixels from the left and from the top of the canvas, whole numbers between pixels: the middle of the first
    // pixel is (0.5, 0.5). At least one. Pressure 0 .. 1.
    std::vector<StrokePoint> points;
    std::size_t brush = 0;              // index among the brushes of the file
    std::optional<std::uint32_t> seed;  // of the random numbers, from this stroke on
    std::string place;                  // "strokes.json: /strokes/3"
};

// What is painted on: a picture, or a field of one colour.
struct CanvasDescription {
    std::filesystem::path picture;  // from the current folder; empty: none
    std::string place;
    std::int32_t width = 0;
    std::int32_t height = 0;
    Colour colour;
    double alpha = 0.0;  // 0 .. 1
};

// A file of strokes as it was read.
struct StrokesFile {
    CanvasDescription canvas;
    std::optional<Depth> depth;  // none: the picture's own, or 8
    std::uint32_t seed = 1;
    std::vector<BrushDescription> brushes;  // strokes that name the same brush have the same index
    std::vector<Stroke> strokes;
};

// Reads a file. Throws cli::Error with the file, the place in it and the reason. Pictures that it names are not
// opened.
[[nodiscard]] StrokesFile ReadStrokes(const std::filesystem::path& file);
// The same from the text of a file, of which `file` is the name.
[[nodiscard]] StrokesFile ParseStrokes(const std::string& text, const std::filesystem::path& file);

}  // namespace chalkpane::app
