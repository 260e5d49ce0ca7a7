#include "kel/workspace/picture_area.h"

#include <algorithm>
#include <cmath>

namespace kel {
namespace {

// The middle of a window pixel, in scene pixels.
std::int32_t Along(std::int32_t at, std::int32_t start, std::int32_t shown, std::int32_t scene) {
    return static_cast<std::int32_t>(std::floor((at - start + 0.5) * scene / shown));
}

}  // namespace

bool PictureArea::Contains(std::int32_t windowX, std::int32_t windowY) const {
    return windowX >= x && windowX < x + width && windowY >= y && windowY < y + height;
}

PictureArea FitPicture(WindowSize scene, WindowSize free) {
    const double scale = std::min(double{1} * free.width / scene.width, double{1} * free.height / scene.height);
    PictureArea area;
    area.width = std::max(1, static_cast<std::int32_t>(std::lround(scene.width * scale)));
    area.height = std::max(1, static_cast<std::int32_t>(std::lround(scene.height * scale)));
    area.x = (free.width - area.width) / 2;
    area.y = (free.height - area.height) / 2;
    return area;
}

WindowSize FirstSize(WindowSize scene, WindowSize room) {
    constexpr double usualSide = 1280;  // pixels: small ones are enlarged to it, where there is room
    constexpr double leastGain = 1.5;   // for less than that pixels stay sharp
    const double width = scene.width;
    const double height = scene.height;
    const double enlarged = usualSide / std::max(width, height);
    const double scale = std::min({enlarged < leastGain ? 1.0 : enlarged, room.width / width, room.height / height});
    const auto side = [&](double length) { return std::max(1, static_cast<int>(std::lround(length * scale))); };
    return {side(width), side(height)};
}

ScenePixel SceneAt(const PictureArea& area, WindowSize scene, std::int32_t windowX, std::int32_t windowY) {
    return {Along(windowX, area.x, area.width, scene.width), Along(windowY, area.y, area.height, scene.height)};
}

}  // namespace kel
