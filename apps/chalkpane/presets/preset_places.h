#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "apps/chalkpane/presets/preset.h"

namespace chalkpane::app {

// A value of a preset and the object that it belongs to, as messages and titles call it: "filter Softener", with a
// number behind it where the chain has several of them: "filter Softener 2".
struct PresetPlace {
    std::string object;
    ParameterValue* value = nullptr;  // belongs to the preset
};

// Every value, in the order of the objects.
[[nodiscard]] std::vector<PresetPlace> PlacesIn(const Preset& preset);

// The value of the parameter of that unique name (or label) or, where several objects have one, of "OBJECT: NAME".
// Without regard to case. Throws cli::Error, which names the preset's file and the nearest names.
[[nodiscard]] PresetPlace FindPlace(const Preset& preset, const std::string& file, std::string_view name);

// From the first frame to the last, both included.
struct FrameRange {
    std::int32_t first = 0;
    std::int32_t last = 0;
};
// From the first key of all to the last; frame 0 alone where there are no keys.
[[nodiscard]] FrameRange FramesOfKeys(const std::vector<PresetPlace>& places, const AnimationClock& clock);

// "0..99", as the option --frames has it. Throws cli::Error for anything else, and for what runs backwards.
[[nodiscard]] FrameRange ParseFrames(std::string_view text);

}  // namespace chalkpane::app
