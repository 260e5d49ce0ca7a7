#include "obs/upload_plan.h"

#include <algorithm>
#include <limits>

#include "telestrator/telestrator.h"

namespace chalkpane::obs {
namespace {

// Handing over a square costs about as much as so many pixels, besides its own.
constexpr std::int64_t pixelsOfACall = 8192;

std::int32_t Count(std::int32_t length, std::int32_t side) { return (length + side - 1) / side; }

}  // namespace

static_assert(std::end(uploadSides)[-1] == canvasSize);

std::vector<UploadSquare> PlanUpload(const Rect& changed) {
    std::vector<UploadSquare> squares;
    if (changed.Width() <= 0 || changed.Height() <= 0) return squares;
    std::int32_t best = canvasSize;
    std::int64_t least = std::numeric_limits<std::int64_t>::max();
    for (const std::int32_t side : uploadSides) {
        const std::int64_t count = std::int64_t{Count(changed.Width(), side)} * Count(changed.Height(), side);
        const std::int64_t cost = count * (std::int64_t{side} * side + pixelsOfACall);
        if (cost < least) best = side;
        least = std::min(least, cost);
    }
    for (std::int32_t y = changed.y0; y <= changed.y1; y += best)
        for (std::int32_t x = changed.x0; x <= changed.x1; x += best)
            squares.push_back({best, std::min(x, canvasSize - best), std::min(y, canvasSize - best)});
    return squares;
}

}  // namespace chalkpane::obs
