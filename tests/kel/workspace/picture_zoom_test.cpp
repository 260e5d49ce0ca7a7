#include "kel/workspace/picture_zoom.h"

#include <doctest/doctest.h>

#include <cstdlib>

namespace kel {
namespace {

constexpr WindowSize scene{1280, 720};
constexpr WindowSize room{640, 480};

}  // namespace

TEST_CASE("A closer look keeps the place under the pointer where it is") {
    const PictureArea fit = FitPicture(scene, room);
    PictureZoom zoom;
    CHECK_EQ(zoom.Place(fit, room) == fit, true);
    const ScenePixel before = SceneAt(fit, scene, 500, 200);
    for (int times = 0; times < 5; ++times) {
        zoom.By(1.25, 500, 200, fit, room);
        const ScenePixel at = SceneAt(zoom.Place(fit, room), scene, 500, 200);
        CHECK_LE(std::abs(at.x - before.x), 1);
        // Until the picture is as high as what is free it stays in the middle of it.
        if (zoom.Place(fit, room).height > room.height) CHECK_LE(std::abs(at.y - before.y), 60);
    }
    CHECK_EQ(zoom.Scale(), doctest::Approx(3.0517578125));  // 1.25 to the fifth
}

TEST_CASE("A picture looked at closely leaves nothing bare, however far it is moved, and comes back whole") {
    const PictureArea fit = FitPicture(scene, room);
    PictureZoom zoom;
    zoom.By(100, 10, 100, fit, room);
    CHECK_EQ(zoom.Scale(), PictureZoom::closest);
    for (const std::int32_t by : {-100'000, 100'000, 37}) {
        zoom.Move(by, by, fit, room);
        const PictureArea area = zoom.Place(fit, room);
        CHECK_LE(area.x, 0);
        CHECK_LE(area.y, 0);
        CHECK_GE(area.x + area.width, room.width);
        CHECK_GE(area.y + area.height, room.height);
    }
    // Moved against its end it comes back at once.
    zoom.Move(100'000, 0, fit, room);
    zoom.Move(-10, 0, fit, room);
    CHECK_EQ(zoom.Place(fit, room).x, -10);
    zoom.By(0.001, 300, 300, fit, room);
    CHECK_FALSE(zoom.IsZoomed());
    CHECK_EQ(zoom.Place(fit, room) == fit, true);
}

}  // namespace kel
