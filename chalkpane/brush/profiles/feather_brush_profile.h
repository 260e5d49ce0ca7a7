#pragma once

#include "chalkpane/brush/profiles/round_brush_profile.h"

namespace chalkpane {

// A superellipse with a full core and a straight slope to the edge.
class FeatherBrushProfile final : public RoundBrushProfile {
public:
    // coreSize: the part of the radius, 0.0 .. 1.0, that is the full core.
    FeatherBrushProfile(const DabShape& shape, const Matrix3& profileMatrix, Depth maskDepth, double coreSize);

    [[nodiscard]] std::unique_ptr<Image> MakeMask(const DabShape& shape) const override;

private:
    double hardness;
};

}  // namespace chalkpane
