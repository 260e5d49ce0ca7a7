#include "kel/scene/seen_size.h"

#include <doctest/doctest.h>

#include "kel/scene/host.h"
#include "tests/kel/pixels.h"
#include "tests/kel/probe.h"

namespace kel {
namespace {

Placement Sheet() {
    Placement sheet;
    sheet.size = {100, 100};
    return sheet;
}

// In a square window that the sheet fills exactly.
bool IsSmall(std::int32_t side, std::int32_t window, const Placement& sheet = Sheet()) {
    return IsSeenSmall({side, side}, sheet, CameraMatrix(testing::CameraInFront(), 1), {window, window});
}

}  // namespace

TEST_CASE("A picture is seen small where more than one and a fifth of its pixels fall on one of the window's") {
    CHECK_FALSE(IsSmall(64, 64));
    CHECK_FALSE(IsSmall(20, 64));
    CHECK_FALSE(IsSmall(76, 64));  // 1.19
    CHECK(IsSmall(78, 64));        // 1.22
    CHECK(IsSmall(640, 64));
}

TEST_CASE(
    "A picture that leans away is seen small where it is farthest, and one edge on or behind the camera is, too") {
    Placement leaning = Sheet();
    leaning.rotation = {0, 30, 0};
    CHECK(IsSmall(64, 64, leaning));
    CHECK_FALSE(IsSmall(30, 64, leaning));
    leaning.rotation = {0, 90, 0};
    CHECK(IsSmall(4, 64, leaning));
    Placement behind = Sheet();
    behind.position = {0, 0, 1000};
    CHECK(IsSmall(4, 64, behind));
}

TEST_CASE("The next picture of a container is seen as if it had been the first, at its size and smaller") {
    for (const std::int32_t side : {64, 40, 200}) {
        CAPTURE(side);
        const picture_io::Picture next = testing::Speckled(side, side);
        const auto seen = [&](bool isFirst) {
            Host host({64, 64});
            host.SetCamera(testing::CameraInFront());
            const ObjectId container = host.AddContainer(Sheet());
            if (!isFirst) {
                host.SetPicture(container, testing::Plain(side, side, testing::red));
                host.RunField();
            }
            host.SetPicture(container, next);
            host.RunField();
            return host.ReadFrame();
        };
        CHECK_EQ(seen(true) == seen(false), true);
        if (side == 64) CHECK_EQ(seen(true) == next, true);
    }
}

}  // namespace kel
