#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "chalkpane/brush/profiles/brush_profile.h"
#include "chalkpane/transform/matrix3.h"
#include "chalkpane/transform/transformer.h"

namespace chalkpane {

// The mask of a picture: its only channel, or alpha. Its lower left pixel is (0, 0); each dab is resampled from it.
class ImageBrushProfile final : public BrushProfile {
public:
    // From a picture, which is only read now and resized to the dab unless it has its size. No mask for a radius below
    // 0 or above `maximumRadius`, or where nothing of the picture remains.
    ImageBrushProfile(const Image& picture, const DabShape& shape, const Matrix3& profileMatrix, Depth maskDepth);
    // From a file, which keeps its own size; no mask when it could not be read.
    ImageBrushProfile(const std::string& fileName, const DabShape& shape, const Matrix3& profileMatrix,
                      Depth maskDepth);

    void GetRect(Rect& out) const override { RectOf(mask.get(), out); }
    // Rotated by `angle` beyond the rotation of the shape.
    [[nodiscard]] std::unique_ptr<Image> GetMask(double x, double y, double angle) override;
    // Rotated as the shape is.
    [[nodiscard]] std::unique_ptr<Image> GetMaskFast(double x, double y) override;

    [[nodiscard]] const Matrix3& PositionMatrix() const { return matrix; }

private:
    enum class Resizing { ToTheDab, None };
    ImageBrushProfile(const DabShape& shape, const Matrix3& profileMatrix);
    void TakeMask(const Image& picture, std::int32_t radius, Depth depth, Resizing resizing);
    [[nodiscard]] std::unique_ptr<Image> Transformed();

    std::unique_ptr<Image> mask;
    Transformer transformer;
    Matrix3 matrix;   // KEEP: stored like that of the other profiles, but a dab goes where it is asked for
    double rotation;  // degrees
};

}  // namespace chalkpane
