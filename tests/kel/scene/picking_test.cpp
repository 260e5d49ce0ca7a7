#include <doctest/doctest.h>

#include <limits>

#include "module/abi/host_api.h"
#include "tests/kel/probe.h"

namespace kel {
namespace {

// The container under a window point, asked for as a module asks.
ObjectId Under(testing::ProbedHost& probed, std::int32_t x, std::int32_t y) {
    ObjectId found = 77;
    std::int32_t result = 0;
    probed.InField([&] { _api__container_get_drop(&found, 0, x, y, &result); });
    return found;
}

Placement Small(const Point3& position) {
    Placement placement;
    placement.size = {10, 10};
    placement.position = position;
    return placement;
}

}  // namespace

// The window's 100 pixels are 100 units: the small container's 10 lie between pixels 75 and 85 from the left and, y
// being 30 up, between 15 and 25 from the top.
TEST_CASE("The container under the pointer is found where it is seen") {
    testing::ProbedHost probed(100);
    const ObjectId small = probed.host->AddContainer(Small({30, 30, 0}));
    CHECK_EQ(Under(probed, 80, 20), small);
    CHECK_EQ(Under(probed, 76, 24), small);
    CHECK_EQ(Under(probed, 74, 24), probed.container);
    CHECK_EQ(Under(probed, 84, 14), probed.container);
    CHECK_EQ(Under(probed, 20, 80), probed.container);
}

TEST_CASE("Where no container is seen there is none") {
    testing::ProbedHost probed(100);
    CHECK_EQ(Under(probed, -5, 50), noObject);
    CHECK_EQ(Under(probed, 50, 2000), noObject);
    CHECK_EQ(Under(probed, std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()),
             noObject);
}

TEST_CASE("Of containers behind one another the nearest is found, whichever was added first") {
    testing::ProbedHost probed(100);
    const ObjectId front = probed.host->AddContainer(Small({0, 0, 5}));
    probed.host->AddContainer(Small({0, 0, -5}));
    CHECK_EQ(Under(probed, 50, 50), front);
}

TEST_CASE("Of containers at the same place the one drawn last is found") {
    testing::ProbedHost probed(100);
    probed.host->AddContainer(Small({0, 0, 0}));
    const ObjectId last = probed.host->AddContainer(Small({0, 0, 0}));
    CHECK_EQ(Under(probed, 50, 50), last);
}

TEST_CASE("A container behind the camera is not found") {
    testing::ProbedHost probed(100);
    probed.host->AddContainer(Small({0, 0, 500}));
    CHECK_EQ(Under(probed, 50, 50), probed.container);
}

TEST_CASE("A container that is rotated onto its edge, or scaled to nothing, is not found") {
    testing::ProbedHost probed(100);
    Placement edge = Small({0, 0, 5});
    edge.rotation = {0, 90, 0};
    probed.host->AddContainer(edge);
    Placement nothing = Small({0, 0, 6});
    nothing.scale = {0, 0, 0};
    probed.host->AddContainer(nothing);
    CHECK_EQ(Under(probed, 50, 50), probed.container);
}

TEST_CASE("The depth of a container's scale is of no matter") {
    testing::ProbedHost probed(100);
    Placement flat = Small({0, 0, 5});
    flat.scale = {1, 1, 0};
    const ObjectId id = probed.host->AddContainer(flat);
    CHECK_EQ(Under(probed, 50, 50), id);
}

// Rotated by 45 degrees about z, a square of 10 reaches 7.07 to the right and loses its corners.
TEST_CASE("A rotated and scaled container is found in its true shape") {
    testing::ProbedHost probed(100);
    Placement diamond = Small({0, 0, 0});
    diamond.rotation = {0, 0, 45};
    diamond.scale = {2, 2, 1};
    const ObjectId id = probed.host->AddContainer(diamond);
    CHECK_EQ(Under(probed, 50 + 13, 50), id);
    CHECK_EQ(Under(probed, 50 + 9, 50 - 9), probed.container);
}

}  // namespace kel
