#pragma once

#include "chalkpane/brush/profiles/round_brush_profile.h"

namespace chalkpane {

// A superellipse filled with speckle, the same for every profile of one size.
// Making one leaves the engine's random generator where drawing the speckle leaves it.
class TextureBrushProfile final : public RoundBrushProfile {
public:
    TextureBrushProfile(const DabShape& shape, const Matrix3& profileMatrix, Depth maskDepth);

    [[nodiscard]] std::unique_ptr<Image> MakeMask(const DabShape& shape) const override;
};

}  // namespace chalkpane
