#include "chalkpane/brush/profiles/feather_brush_profile.h"

#include <bit>

#include "chalkpane/brush/profiles/profile_content.h"
#include "chalkpane/brush/profiles/superellipse.h"

namespace chalkpane {

FeatherBrushProfile::FeatherBrushProfile(const DabShape& shape, const Matrix3& profileMatrix, Depth maskDepth,
                                         double coreSize)
    : RoundBrushProfile(profileMatrix, maskDepth), hardness(coreSize) {
    IdentifyContent({static_cast<std::uint64_t>(ProfileContent::Feather), std::bit_cast<std::uint64_t>(hardness)});
    RoundBrushProfile::Prepare(shape, profileMatrix);
}

std::unique_ptr<Image> FeatherBrushProfile::MakeMask(const DabShape& shape) const {
    const Superellipse outline(shape, 0);
    return MaskOfShape(outline, MaskDepth(), [&](double u, double v) -> std::uint8_t {
        const double q = outline.Distance(u, v);
        if (q > 1) return 0;
        if (q < hardness) return 255;
        return CoverageByte((1 - (q - hardness) / (1 - hardness)) * 255 + 0.5);
    });
}

}  // namespace chalkpane
