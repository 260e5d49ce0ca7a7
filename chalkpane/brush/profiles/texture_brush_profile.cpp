#include "chalkpane/brush/profiles/texture_brush_profile.h"

#include "chalkpane/base/memory_loss.h"
#include "chalkpane/base/random.h"
#include "chalkpane/brush/profiles/profile_content.h"
#include "chalkpane/brush/profiles/superellipse.h"

namespace chalkpane {

namespace {

std::uint8_t Speckle() {
    const auto n = static_cast<float>(Random() / 32767.0);
    return CoverageByte(static_cast<double>(n) * n * 255 + 0.5);
}

}  // namespace

TextureBrushProfile::TextureBrushProfile(const DabShape& shape, const Matrix3& profileMatrix, Depth maskDepth)
    : RoundBrushProfile(profileMatrix, maskDepth) {
    IdentifyContent({static_cast<std::uint64_t>(ProfileContent::Texture)});
    RoundBrushProfile::Prepare(shape, profileMatrix);
    SeedRandom(Masks()->randomStateAfter);  // as drawn, though the masks may come from the cache
}

// KEEP: the side is even, one more than that of the other profiles, and so the middle lies between pixels.
std::unique_ptr<Image> TextureBrushProfile::MakeMask(const DabShape& shape) const {
    const Superellipse outline(shape, 1);
    SeedRandom(0);
    if (outline.Side() < 1) return nullptr;
    try {
        auto values =
            outline.Map([&](double u, double v) -> std::uint8_t { return 1 - outline.Distance(u, v) >= 0 ? 1 : 0; });
        for (auto& value : values)  // numbers are drawn inside the shape alone
            if (value != 0) value = Speckle();
        return MaskOfBytes(values, outline.Side(), MaskDepth());
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
        return nullptr;
    }
}

}  // namespace chalkpane
