#include "chalkpane/brush/profiles/superellipse.h"

namespace chalkpane {

namespace {

std::int32_t SideOf(const DabShape& shape, std::int32_t extraSide) {
    const std::int64_t total = std::int64_t{shape.radius} + shape.margin;
    if (total > BrushProfile::maximumRadius) return 0;
    return static_cast<std::int32_t>(std::max<std::int64_t>(total * 2 + 1 + extraSide, 0));
}

}  // namespace

Superellipse::Superellipse(const DabShape& shape, std::int32_t extraSide)
    : side(SideOf(shape, extraSide)), centre(side * 0.5 - 0.5), edge(shape.radius + 0.5), flatness(shape.flatness) {
    const double turn = -shape.rotation * std::numbers::pi / 180;
    cosine = std::cos(turn);
    sine = std::sin(turn);
    const double roundness = shape.roundness < 0.01 ? 0.01 : shape.roundness;
    exponent = 2 / roundness;
    root = roundness / 2;
    isUpright = sine == 0.0 && cosine == 1.0;
    isSquare = isUpright && flatness == 1.0;
}

std::unique_ptr<Image> MaskOfBytes(const std::vector<std::uint8_t>& values, std::int32_t side, Depth depth) {
    auto mask = std::make_unique<Image>(Image::Mask(side, side, depth));
    auto value = values.begin();
    for (std::int32_t y = 0; y < side; ++y)
        for (std::int32_t x = 0; x < side; ++x) mask->SetAlpha8(x, y, *value++);
    return mask;
}

}  // namespace chalkpane
