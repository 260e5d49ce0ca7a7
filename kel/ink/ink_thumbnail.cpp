#include "kel/ink/ink_thumbnail.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "telestrator/journal/ink_painter.h"
#include "telestrator/telestrator.h"

namespace kel {
namespace {

// The mean of a square of the canvas.
std::array<std::uint8_t, 4> MeanOf(const chalkpane::Image& canvas, std::int32_t left, std::int32_t top,
                                   std::int32_t pixels) {
    std::array<std::uint32_t, 4> sums{};
    for (std::int32_t y = top; y < top + pixels; ++y)
        for (std::int32_t x = left; x < left + pixels; ++x)
            for (std::size_t i = 0; i < sums.size(); ++i)
                sums[i] += static_cast<std::uint32_t>(canvas.Address(x, y)[i]);
    std::array<std::uint8_t, 4> mean{};
    const auto count = static_cast<std::uint32_t>(pixels * pixels);
    for (std::size_t i = 0; i < sums.size(); ++i) mean[i] = static_cast<std::uint8_t>((sums[i] + count / 2) / count);
    return mean;
}

// A square of the canvas that holds all of it, small for a small drawing, which would be a dot in all of the canvas.
chalkpane::Rect SquareAround(const std::vector<chalkpane::SharedStroke>& strokes, const chalkpane::Rect& canvas) {
    constexpr std::int32_t smallest = 128;  // canvas pixels
    chalkpane::Rect drawn;
    for (const chalkpane::SharedStroke& stroke : strokes) drawn = drawn.Union(InkBounds(*stroke, canvas));
    if (!drawn.IsValid()) return canvas;
    std::int32_t side = smallest;
    while (side < std::max(drawn.Width(), drawn.Height())) side *= 2;
    const auto begin = [&](std::int32_t first, std::int32_t last, std::int32_t end) {
        return std::clamp((first + last - side) / 2, 0, std::max(end + 1 - side, 0));
    };
    const std::int32_t x = begin(drawn.x0, drawn.x1, canvas.x1);
    const std::int32_t y = begin(drawn.y0, drawn.y1, canvas.y1);
    return {x, y, x + side - 1, y + side - 1};
}

}  // namespace

picture_io::Picture InkThumbnail(const std::vector<chalkpane::SharedStroke>& strokes, std::int32_t side) {
    chalkpane::Image canvas = chalkpane::NewInkCanvas();
    chalkpane::InkPainter painter;
    for (const chalkpane::SharedStroke& stroke : strokes) painter.Paint(*stroke, canvas, canvas);
    picture_io::Picture picture(side, side);
    const chalkpane::Rect shown = SquareAround(strokes, canvas);
    const std::int32_t pixels = shown.Width() / side;
    for (std::int32_t y = 0; y < side; ++y)
        for (std::int32_t x = 0; x < side; ++x)
            picture.Set(x, y, MeanOf(canvas, shown.x0 + x * pixels, shown.y0 + y * pixels, pixels));
    return picture;
}

}  // namespace kel
