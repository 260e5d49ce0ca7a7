#include "apps/chalkpane/strokes/brush_limits.h"

#include <algorithm>
#include <string>
#include <vector>

#include "apps/chalkpane/strokes/brush_choices.h"
#include "chalkpane/brush/profiles/brush_profile.h"
#include "chalkpane/parameters/animation/animated_numbers.h"
#include "chalkpane/parameters/parameter_def.h"
#include "cli/error.h"
#include "cli/nearest_name.h"

namespace chalkpane::app {
namespace {

using cli::Error;

void CheckRadius(std::int32_t radius) {
    if (radius < 0 || radius > BrushProfile::maximumRadius)
        throw Error(std::to_string(radius) + " lies outside 0 .. " + std::to_string(BrushProfile::maximumRadius));
}

void CheckSize(const ParameterValue& value) {
    if (const auto* const keyed = dynamic_cast<const AnimatedInt*>(&value)) {
        for (std::int32_t i = 0; i < keyed->keyCount(); ++i) CheckRadius(keyed->keyValue(i));
        return;
    }
    std::int32_t radius = 0;
    value.getInteger(radius);
    CheckRadius(radius);
}

void CheckProfile(const ParameterValue& value) {
    std::string profile;
    value.getString(profile);
    const auto names = ProfileNames();
    if (std::ranges::find(names, profile) == names.end())
        throw Error("there is no profile " + cli::Quoted(profile) + cli::NearestHint(profile, names));
}

}  // namespace

void CheckBrushValue(const ParameterValue& value) {
    const std::string& name = value.getParameter()->name;
    if (name == "Brush Size") CheckSize(value);
    if (name == "Brush Profile Type") CheckProfile(value);
}

}  // namespace chalkpane::app
