#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace kel {

// An axis of an input device as X tells it, and its limits.
struct InputAxis {
    int number = 0;
    std::string_view label;  // "Abs Pressure"
    double least = 0;
    double most = 0;
};

// A pen on a tablet, or its other end, which erases.
struct StylusDevice {
    int id = 0;
    bool isEraser = false;
    int pressureAxis = -1;  // -1: it tells none
    double least = 0;
    double most = 1;
};

// Nothing: what has this name and these axes is no pen. The two ends of a pen are two devices, and only their names
// tell them apart.
[[nodiscard]] std::optional<StylusDevice> DescribeStylus(int id, std::string_view name,
                                                         std::span<const InputAxis> axes);

// What a raw event says of the pressure, 0.0 .. 1.0, to four decimals. Nothing: it has not changed, or the device tells
// none.
//   mask    a bit for each axis that has a value, the lowest first
//   values  of those axes alone, in their order
[[nodiscard]] std::optional<double> PressureIn(const StylusDevice& device, std::span<const unsigned char> mask,
                                               std::span<const double> values);

}  // namespace kel
