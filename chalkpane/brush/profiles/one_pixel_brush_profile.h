#pragma once

#include <cstdint>
#include <memory>

#include "chalkpane/brush/profiles/brush_profile.h"
#include "chalkpane/transform/matrix3.h"

namespace chalkpane {

// A full square, of one pixel unless a radius makes it larger. Never rotated and never between pixels.
class OnePixelBrushProfile final : public BrushProfile {
public:
    // maskRadius: pixels; below 0 or above `maximumRadius` there is no mask.
    OnePixelBrushProfile(std::int32_t maskRadius, const Matrix3& profileMatrix, Depth maskDepth);

    void GetRect(Rect& out) const override { RectOf(mask.get(), out); }
    [[nodiscard]] std::unique_ptr<Image> GetMask(double x, double y, double angle) override;
    // Past the matrix.
    [[nodiscard]] std::unique_ptr<Image> GetMaskFast(double x, double y) override;

private:
    std::unique_ptr<Image> mask;
    std::int32_t radius;
    Matrix3 matrix;
};

}  // namespace chalkpane
