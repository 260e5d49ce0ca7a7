#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "apps/chalkpane/strokes/picture_files.h"
#include "apps/chalkpane/strokes/strokes_file.h"
#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/image/image.h"

namespace chalkpane::app {

// A new image to paint on, premultiplied: the canvas that a file describes, or `picture` where that is not empty. Its
// lower left pixel is (0, 0).
//   depth: none: that of the file, or of the picture
// Throws cli::Error for a picture that cannot be read.
[[nodiscard]] std::unique_ptr<Image> MakeCanvas(const StrokesFile& file, const std::filesystem::path& picture,
                                                std::optional<Depth> depth);

struct PaintOptions {
    std::int32_t frame = 0;  // that filters with a course in time are at
    // Paints every stroke in place of the file's brushes, from which it gets colours, pictures and masks alone; its
    // settings and its filters are the caller's. Not owned; null: each stroke's own brush.
    BasicBrush* brush = nullptr;
    // Called with the number of points painted so far; may be empty.
    std::function<void(std::int64_t points)> progress;
};

[[nodiscard]] std::int64_t PointCount(const StrokesFile& file);

// Paints all strokes of a file onto `canvas`, the same pixels every time: the random numbers begin with the file's
// seed. All pictures are read first. Strokes in a row with one brush go on with it, with the frames of its cutout.
// Throws cli::Error for a picture that cannot be read, and for work beyond WorkLimit; then some strokes may have
// been painted.
void PaintStrokes(const StrokesFile& file, Image& canvas, PictureFiles& pictures, const PaintOptions& options);

// One stroke with a brush that is prepared for `canvas`. `painted` is called after each point; may be empty.
void PaintStroke(const Stroke& stroke, BasicBrush& brush, const Image& canvas, const std::function<void()>& painted);

}  // namespace chalkpane::app
