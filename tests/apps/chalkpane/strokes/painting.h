#pragma once

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "apps/chalkpane/strokes/stroke_painter.h"
#include "chalkpane/image/image.h"

namespace chalkpane::app::testing {

// The canvas after the strokes of a file with this text, which need not be there.
inline std::unique_ptr<Image> Painted(const std::string& text, const std::filesystem::path& file = "s.json",
                                      const PaintOptions& options = {}) {
    const StrokesFile strokes = ParseStrokes(text, file);
    auto canvas = MakeCanvas(strokes, {}, {});
    PictureFiles pictures(canvas->GetDepth());
    PaintStrokes(strokes, *canvas, pictures, options);
    return canvas;
}

// A file with these strokes on a canvas of 8 bits.
inline std::string FileOf(const std::string& canvas, const std::string& strokes, const std::string& more = "") {
    return R"({"canvas": )" + canvas + R"(, "strokes": [)" + strokes + "]" + more + "}";
}
inline const std::string in14Bits = R"(, "depth": 14)";

inline Pixel8 At8(const Image& canvas, std::int32_t x, std::int32_t rowFromTop) {
    return canvas.GetPixel8(x, canvas.y1 - rowFromTop);
}
inline Pixel14 At14(const Image& canvas, std::int32_t x, std::int32_t rowFromTop) {
    return canvas.GetPixel14(x, canvas.y1 - rowFromTop);
}

inline bool SamePixels(const Image& left, const Image& right) {
    if (left.Bounds() != right.Bounds() || left.depth != right.depth) return false;
    for (std::int32_t y = left.y0; y <= left.y1; ++y) {
        const bool agree = left.depth == 0 ? std::ranges::equal(left.Row8(y), right.Row8(y))
                                           : std::ranges::equal(left.Row14(y), right.Row14(y));
        if (!agree) return false;
    }
    return true;
}

// Pixels that are not wholly transparent.
inline int PaintedPixels(const Image& canvas) {
    int count = 0;
    for (std::int32_t y = canvas.y0; y <= canvas.y1; ++y)
        for (std::int32_t x = canvas.x0; x <= canvas.x1; ++x)
            count += (canvas.depth == 0 ? canvas.GetPixel8(x, y).alpha : canvas.GetPixel14(x, y).alpha) != 0 ? 1 : 0;
    return count;
}

}  // namespace chalkpane::app::testing
