#include "chalkpane/brush/profiles/brush_profile.h"

namespace chalkpane {

std::unique_ptr<Image> MovedShare(const Image* image, double dx, double dy) {
    const auto x = WholePixels(dx);
    const auto y = WholePixels(dy);
    if (image == nullptr || !x || !y) return nullptr;
    auto moved = std::make_unique<Image>(*image);
    moved->Translate(*x, *y);
    return moved;
}

std::uint8_t CoverageByte(double value) {
    if (!(value > -2147483649.0 && value < 2147483648.0)) return 0;
    return static_cast<std::uint8_t>(static_cast<std::int32_t>(value));
}

}  // namespace chalkpane
