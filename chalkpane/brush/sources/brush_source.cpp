#include "chalkpane/brush/sources/brush_source.h"

#include <cmath>

#include "chalkpane/brush/profiles/feather_brush_profile.h"
#include "chalkpane/brush/profiles/graph_brush_profile.h"
#include "chalkpane/brush/profiles/image_brush_profile.h"
#include "chalkpane/brush/profiles/one_pixel_brush_profile.h"
#include "chalkpane/brush/profiles/texture_brush_profile.h"

namespace chalkpane {

bool BrushSource::MakeMaskDab(double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                              std::unique_ptr<Image>& maskOut) {
    if (ReusePickup(maskPickup, x, y, angle, colourOut, maskOut)) return colourOut != nullptr;
    return MakeDab(x, y, angle, colourOut, maskOut);
}

double BrushSource::GetSizeInDirection(double angle) const {
    const double width = 2.0 * size + 1;
    if (angle == 0) return width;
    const double a = rotation / 57.295 - angle;  // KEEP: degrees to radians by this rounded constant
    const double along = std::cos(a);
    const double across = std::sin(a) * flatness;
    return width / std::sqrt(along * along + across * across);
}

double BrushSource::GetSize() const { return 2.0 * size + 1; }

void BrushSource::DropPickup() {
    paintPickup.image = nullptr;
    maskPickup.image = nullptr;
}

void BrushSource::DabPlaced(double x, double y, double angle) {
    Renew(paintPickup, &BrushSource::MakeDab, x, y, angle);
}
void BrushSource::DabPlacedOnMask(double x, double y, double angle) {
    Renew(maskPickup, &BrushSource::MakeMaskDab, x, y, angle);
}

void BrushSource::Renew(Pickup& kept, DabMaker make, double x, double y, double angle) {
    if (GetPickupMode() != PickupMode::EveryDab) return;
    kept.image = nullptr;
    std::unique_ptr<Image> colour;
    std::unique_ptr<Image> mask;
    (this->*make)(x, y, angle, colour, mask);
}

std::unique_ptr<BrushProfile> BrushSource::MakeProfile(std::int32_t margin, GraphValue* graph, const Matrix3& matrix) {
    const DabShape shape{size, flatness, rotation, roundness, margin};
    if (maskImage != nullptr) return std::make_unique<ImageBrushProfile>(*maskImage, shape, matrix, targetDepth);
    switch (GetProfileType()) {
        case ProfileType::Image:
            return std::make_unique<ImageBrushProfile>(profileMask.string(), shape, matrix, targetDepth);
        case ProfileType::OnePixel:
            size = 0;  // so the spacing of its dabs is that of one pixel
            return std::make_unique<OnePixelBrushProfile>(margin, matrix, targetDepth);
        case ProfileType::Texture:
            return std::make_unique<TextureBrushProfile>(shape, matrix, targetDepth);
        case ProfileType::Feather:
            return std::make_unique<FeatherBrushProfile>(shape, matrix, targetDepth, feather);
        default:
            return std::make_unique<GraphBrushProfile>(shape, matrix, targetDepth, graph);
    }
}

bool BrushSource::ReusePickup(const Pickup& kept, double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                              std::unique_ptr<Image>& maskOut) {
    if (GetPickupMode() == PickupMode::Off || !kept.image) return false;
    const Image& image = *kept.image;
    const double centreX = image.x0 + image.Width() * 0.5;
    const double centreY = image.y0 + image.Height() * 0.5;
    transformer.SetTransform(centreX, centreY, centreX + (x - kept.x), centreY + (y - kept.y), 1.0, 1.0,
                             angle - kept.angle);
    Rect moved;
    maskOut = GetMask(x, y, angle);
    colourOut = maskOut ? transformer.Apply(image, moved) : nullptr;
    return true;
}

void BrushSource::StorePickup(Pickup& kept, const Image& colourImage, double x, double y, double angle) const {
    if (GetPickupMode() == PickupMode::Off) return;
    kept = {std::make_unique<Image>(colourImage), x, y, angle};
}

std::optional<ProfileType> ProfileTypeOfName(std::string_view name) {
    if (name == "Texture") return ProfileType::Texture;
    if (name == "Feathered") return ProfileType::Feather;
    if (name == "OnePixel") return ProfileType::OnePixel;
    return std::nullopt;
}

}  // namespace chalkpane
