#pragma once

#include <memory>
#include <optional>

#include "chalkpane/image/image.h"
#include "chalkpane/image/mr_image.h"
#include "chalkpane/parameters/parameter_table.h"
#include "chalkpane/transform/matrix3.h"

namespace chalkpane {

// Moves, scales and rotates an image by a matrix, resampling it with fixed-point bilinear interpolation.
//
// Sources and results are images of either depth, of one or four channels. Beyond its edge a source is zero, so edges
// fade out across one pixel. Sources are borrowed for the call; results belong to the caller. New images throw
// std::bad_alloc when there is no memory for them. A matrix that cannot be inverted, or a result larger than
// `maximumPixels` or out of the 32-bit plane, gives an image of the empty rectangle; it never gives null.
// Thread: one user at a time; rows of large results run on the workers.
class Transformer : public WithParameters<Transformer, ParameterisedObject> {
public:
    static constexpr auto Parameters() {
        using Self = Transformer;
        return std::to_array<ParameterRow<Self>>({
            {0, "Position", "Transform Move", DoublePair{0.0, 0.0}, {}, &Self::move, {ParameterType::position}},
            {1, "Scale", "Transform Scale", DoublePair{1.0, 1.0}, {}, &Self::scale},
            {2, "Rotation", "Transform Rotation", 0.0, {}, &Self::rotation, angle0To360},
            {3, "Origin", "Transform Origin", DoublePair{0.0, 0.0}, {}, &Self::origin},
        });
    }

    static constexpr std::int64_t maximumPixels = std::int64_t{1} << 28;

    // About the origin: scaled, rotated clockwise by `turn` degrees as y grows upward, then moved by `move`.
    // origin, move: canvas pixels; scale: 1.0 keeps the size.
    void SetTransform(double originX, double originY, double moveX, double moveY, double scaleX, double scaleY,
                      double turn);
    // Takes `matrix` as it is, from source to result; the seven values above stay as they were.
    void SetMatrix(const Matrix3& matrix);
    // Rebuilds both matrices from the seven values, which are the parameters.
    virtual void Recompute();
    void valuesChanged() override { Recompute(); }

    // The transformed source, and its rectangle in `outRect`. Identity and moves by whole pixels are plain copies.
    [[nodiscard]] std::unique_ptr<Image> Apply(const Image& source, Rect& outRect);
    [[nodiscard]] std::unique_ptr<Image> Apply(MRImage& source, Rect& outRect);
    // Resamples into `rect` of an existing target, of the source's format and depth; pixels of `rect` that the
    // source does not reach become zero. Without overlap, or where the formats differ, nothing changes.
    void ApplyInto(const Image& source, Image& target, const Rect& rect);
    void ApplyInto(MRImage& source, Image& target, const Rect& rect);

    // Results are written, and sources read, inside these alone.
    void LimitTarget(const Rect& limit);
    void LimitSource(const Rect& limit);
    void RemoveLimits() { limitTarget = limitSource = false; }

    [[nodiscard]] const Matrix3& Forward() const { return forward; }
    [[nodiscard]] const Matrix3& Inverse() const { return inverse; }

private:
    [[nodiscard]] bool IsUsable() const;
    // The move, when the matrix is nothing but a move by whole pixels.
    [[nodiscard]] std::optional<Point2> WholeMove() const;
    template <typename Source>
    std::unique_ptr<Image> ApplyTo(Source& source, Rect& outRect);

    Matrix3 forward;
    Matrix3 inverse;
    Rect sourceArea;  // of the resampling under way
    Rect targetArea;
    DoublePair origin;
    DoublePair move;
    DoublePair scale{1.0, 1.0};
    double rotation = 0.0;  // degrees
    Rect targetLimit;
    bool limitTarget = false;
    Rect sourceLimit;
    bool limitSource = false;
};

}  // namespace chalkpane
