#include "kel/window/stylus_device.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace kel {
namespace {

constexpr std::string_view pressureLabel = "Abs Pressure";

bool NamesEraser(std::string_view name) {
    std::string small(name);
    std::ranges::transform(small, small.begin(),
                           [](char letter) { return letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter; });
    return small.find("eraser") != std::string::npos;
}

bool IsSet(std::span<const unsigned char> mask, int axis) {
    const auto byte = static_cast<std::size_t>(axis) / 8;
    return byte < mask.size() && (mask[byte] >> (static_cast<unsigned>(axis) % 8U) & 1U) != 0;
}

}  // namespace

std::optional<StylusDevice> DescribeStylus(int id, std::string_view name, std::span<const InputAxis> axes) {
    StylusDevice device{id, NamesEraser(name)};
    for (const InputAxis& axis : axes) {
        if (axis.label != pressureLabel || axis.number < 0 || !(axis.most > axis.least)) continue;
        device.pressureAxis = axis.number;
        device.least = axis.least;
        device.most = axis.most;
    }
    if (device.pressureAxis < 0 && !device.isEraser) return std::nullopt;
    return device;
}

std::optional<double> PressureIn(const StylusDevice& device, std::span<const unsigned char> mask,
                                 std::span<const double> values) {
    if (device.pressureAxis < 0 || !IsSet(mask, device.pressureAxis)) return std::nullopt;
    std::size_t place = 0;
    for (int axis = 0; axis < device.pressureAxis; ++axis) place += IsSet(mask, axis) ? 1 : 0;
    if (place >= values.size()) return std::nullopt;
    const double share = (values[place] - device.least) / (device.most - device.least);
    if (!std::isfinite(share)) return std::nullopt;
    // The finest tablets tell 8192 steps apart; more digits would only lengthen what is written of a stroke.
    constexpr double kept = 10'000;
    return std::round(std::clamp(share, 0.0, 1.0) * kept) / kept;
}

}  // namespace kel
