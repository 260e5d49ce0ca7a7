#include "kel/ink/ink_thumbnail.h"

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

}  // namespace

picture_io::Picture InkThumbnail(const std::vector<chalkpane::SharedStroke>& strokes, std::int32_t side) {
    chalkpane::Image canvas = chalkpane::NewInkCanvas();
    chalkpane::InkPainter painter;
    for (const chalkpane::SharedStroke& stroke : strokes) painter.Paint(*stroke, canvas, canvas);
    picture_io::Picture picture(side, side);
    const std::int32_t pixels = chalkpane::canvasSize / side;
    for (std::int32_t y = 0; y < side; ++y)
        for (std::int32_t x = 0; x < side; ++x) picture.Set(x, y, MeanOf(canvas, x * pixels, y * pixels, pixels));
    return picture;
}

}  // namespace kel
