#include "apps/chalkpane/strokes/brush_description.h"

#include <algorithm>

namespace chalkpane::app {

void BrushDescription::InheritFrom(const BrushDescription& other) {
    if (!colour) colour = other.colour;
    if (!picture) picture = other.picture;
    if (!mask) mask = other.mask;
    if (!filters) filters = other.filters;
    const auto own = settings;
    for (const Setting& setting : other.settings)
        if (std::ranges::find(own, setting.parameter, &Setting::parameter) == own.end()) settings.push_back(setting);
}

}  // namespace chalkpane::app
