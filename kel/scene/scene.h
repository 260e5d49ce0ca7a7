#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace kel {

// What the scene is made of. World units are free; y points upwards, and a camera that looks along -z sees x to the
// right.

using Point3 = std::array<double, 3>;

// Names an object of the host: positive, never used twice. noObject: none.
using ObjectId = std::int32_t;
constexpr ObjectId noObject = -1;

struct Camera {
    Point3 position{0, 0, 10};
    Point3 target{0, 0, 0};
    double fieldOfView = 40;  // degrees, from the bottom to the top of the window; above 0, below 180
    Point3 up{0, 1, 0};       // seen upright; another axis is taken when it points along the view
};

// Where a container stands. It is a flat rectangle, centred on the origin of its own coordinates, in their plane z = 0.
struct Placement {
    std::string name;
    std::array<double, 2> size{100, 100};  // width, height in own coordinates
    Point3 position{0, 0, 0};              // of the centre, in the world
    Point3 rotation{0, 0, 0};              // degrees about x, then y, then z
    Point3 scale{1, 1, 1};                 // before the rotation
};

}  // namespace kel
