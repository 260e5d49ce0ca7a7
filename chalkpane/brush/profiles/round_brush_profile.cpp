#include "chalkpane/brush/profiles/round_brush_profile.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

#include "chalkpane/base/memory_loss.h"
#include "chalkpane/base/random.h"
#include "chalkpane/brush/profiles/superellipse.h"

namespace chalkpane {

RoundBrushProfile::ChosenCopy RoundBrushProfile::Choose(double x, double y) const {
    const Point2 at = matrix.Transform(x, y);
    if (BaseMask() == nullptr || !WholePixels(at.x) || !WholePixels(at.y)) return {};
    return {Shifted(Eighth(at.x), Eighth(at.y)), at.x - offsetX, at.y - offsetY};
}

RoundBrushProfile::PlacedMask RoundBrushProfile::FindMask(double x, double y) const {
    const auto [number, moveX, moveY] = FindCopy(x, y);
    if (number < 0) return {};
    const Image* const copy = Shifted(static_cast<std::size_t>(number) / 8, static_cast<std::size_t>(number) % 8);
    if (copy == nullptr) return {};
    PlacedMask placed{copy, copy->Bounds()};
    placed.rect.Translate(moveX, moveY);
    return placed;
}

std::unique_ptr<Image> RoundBrushProfile::GetMask(double x, double y, double angle) {
    const auto [copy, placeX, placeY] = Choose(x, y);
    if (copy == nullptr) return nullptr;
    if (std::abs(angle) <= 0.0001) return MovedShare(copy, placeX, placeY);
    const double halfWidth = copy->Width() * 0.5;
    const double halfHeight = copy->Height() * 0.5;
    transformer.SetMatrix(Matrix3::Translation(-halfWidth, -halfHeight) *
                          Matrix3::Rotation(-angle * std::numbers::pi / 180) *
                          Matrix3::Translation(halfWidth, halfHeight));
    Rect rotatedRect;
    const auto rotated = transformer.Apply(*copy, rotatedRect);
    return rotatedRect.IsValid() ? MovedShare(rotated.get(), placeX, placeY) : nullptr;
}

std::unique_ptr<Image> RoundBrushProfile::GetMaskFast(double x, double y) {
    return MovedShare(BaseMask(), x - totalRadius, y - totalRadius);
}

void RoundBrushProfile::Prepare(const DabShape& shape, const Matrix3& newMatrix) {
    matrix = newMatrix;
    totalRadius = static_cast<std::int32_t>(
        std::clamp<std::int64_t>(std::int64_t{shape.radius} + shape.margin, -maximumRadius, maximumRadius));
    const Point2 offset = matrix.Transform(totalRadius + 0.5, totalRadius + 0.5);
    offsetX = offset.x;
    offsetY = offset.y;
    ProfileKey key = content;
    for (const double number : {shape.flatness, shape.rotation, shape.roundness})
        key.push_back(std::bit_cast<std::uint64_t>(number));
    for (const std::int32_t number : {shape.radius, shape.margin, static_cast<std::int32_t>(depth)})
        key.push_back(static_cast<std::uint32_t>(number));
    if (!content.empty()) masks = cache->Find(key);
    const bool isKept = masks != nullptr;
    if (!isKept) masks = Build(shape);
    isBuilt = BaseMask() != nullptr;
    if (!isKept && !content.empty() && isBuilt) cache->Add(key, masks);
}

std::shared_ptr<const ProfileMasks> RoundBrushProfile::Build(const DabShape& shape) const {
    auto built = std::make_shared<ProfileMasks>();
    built->baseMask = MakeMask(shape);
    built->randomStateAfter = RandomState();
    if (!built->baseMask) return built;
    try {
        Transformer shift;
        for (std::size_t i = 0; i < 8; ++i) {
            for (std::size_t j = 0; j < 8; ++j) {
                shift.SetMatrix(Matrix3::Translation(static_cast<double>(j) / 8, static_cast<double>(i) / 8));
                Rect rect;
                built->shifted[j][i] = shift.Apply(*built->baseMask, rect);
            }
        }
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
        built->baseMask = nullptr;
    }
    return built;
}

std::unique_ptr<Image> RoundBrushProfile::MakeMask(const DabShape& shape) const {
    const Superellipse cone(shape, 0);
    return MaskOfShape(cone, MaskDepth(), [&](double u, double v) {
        return CoverageByte(std::max(1 - cone.RoundDistance(u, v), 0.0) * 255 + 0.5);
    });
}

}  // namespace chalkpane
