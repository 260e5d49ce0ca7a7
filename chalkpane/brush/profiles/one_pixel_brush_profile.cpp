#include "chalkpane/brush/profiles/one_pixel_brush_profile.h"

#include <new>

#include "chalkpane/base/memory_loss.h"

namespace chalkpane {

OnePixelBrushProfile::OnePixelBrushProfile(std::int32_t maskRadius, const Matrix3& profileMatrix, Depth maskDepth)
    : radius(maskRadius), matrix(profileMatrix) {
    if (radius < 0 || radius > maximumRadius) return;
    const std::int32_t side = 2 * radius + 1;
    try {
        mask = std::make_unique<Image>(Image::Mask(side, side, maskDepth));
        mask->FillChannel(1.0);
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
        mask = nullptr;
    }
}

std::unique_ptr<Image> OnePixelBrushProfile::GetMask(double x, double y, double /*angle*/) {
    const Point2 at = matrix.Transform(x, y);
    return GetMaskFast(at.x, at.y);
}

std::unique_ptr<Image> OnePixelBrushProfile::GetMaskFast(double x, double y) {
    return MovedShare(mask.get(), x - radius, y - radius);
}

}  // namespace chalkpane
