#include "kel/control/control_json.h"

#include <array>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

#include "kel/session/session_json.h"

namespace kel {
namespace {

// The double that is written with the float's own digits: 0.1, and not 0.10000000149.
double ShortDouble(float number) {
    std::array<char, 64> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    double shortest = number;
    std::from_chars(digits.data(), end, shortest);
    return shortest;
}

}  // namespace

std::string ControlJsonText(const nlohmann::ordered_json& json) {
    return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

nlohmann::ordered_json ControlValueJson(const Parameter& parameter, const ParameterValue& value) {
    if (parameter.kind == ParameterKind::Float) return ShortDouble(std::get<float>(value));
    return JsonValue(parameter, value);
}

nlohmann::ordered_json ControlVideoJson(const Workspace& workspace) {
    const VideoShow* video = workspace.Video();
    if (video == nullptr) return nullptr;
    const VideoClock& clock = video->Clock();
    return {{"frame", workspace.VideoFrame()},
            {"play", clock.IsRunning(workspace.NextField())},
            {"loop", clock.Loops()},
            {"speed", clock.Speed()},
            {"in", clock.In()},
            {"out", clock.Out()},
            {"frames", clock.Frames()}};
}

nlohmann::ordered_json ControlFadeJson(const Workspace& workspace) {
    const Workspace::Fading& fading = workspace.InkFading();
    if (!fading.isOn) return false;
    return {{"after", fading.after}, {"over", std::lround(fading.over * workspace.FieldsPerSecond())}};
}

}  // namespace kel
