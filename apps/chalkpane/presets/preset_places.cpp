#include "apps/chalkpane/presets/preset_places.h"

#include <algorithm>
#include <limits>
#include <map>

#include "apps/chalkpane/values/value_parsing.h"
#include "chalkpane/parameters/animation/key.h"
#include "cli/error.h"
#include "cli/nearest_name.h"

namespace chalkpane::app {
namespace {

using cli::Error;
using cli::Quoted;

void AddPlaces(std::vector<PresetPlace>& places, const std::string& object, const DataSet& values) {
    for (const ValuePointer& value : values) places.push_back({object, value.get()});
}

const std::string& NameOf(const PresetPlace& place) { return place.value->getParameter()->name; }
std::string LongNameOf(const PresetPlace& place) { return place.object + ": " + NameOf(place); }

}  // namespace

std::vector<PresetPlace> PlacesIn(const Preset& preset) {
    std::vector<PresetPlace> places;
    if (preset.brush)
        for (const DataSet* values : {&preset.brush->brush, &preset.brush->source, &preset.brush->paint})
            AddPlaces(places, "brush " + preset.name, *values);
    std::map<std::string_view, int> counts;
    for (const auto& filter : preset.filters) {
        const int count = ++counts[filter->Name()];
        std::string object = "filter " + std::string(filter->Name());
        if (count > 1) object += ' ' + std::to_string(count);
        AddPlaces(places, object, *filter->m_values);
    }
    return places;
}

PresetPlace FindPlace(const Preset& preset, const std::string& file, std::string_view name) {
    const std::string_view wanted = Trimmed(name);
    std::vector<PresetPlace> byName;
    std::vector<PresetPlace> byLabel;
    std::vector<std::string> names;
    for (const PresetPlace& place : PlacesIn(preset)) {
        if (SameName(LongNameOf(place), wanted)) return place;
        if (SameName(NameOf(place), wanted)) byName.push_back(place);
        if (SameName(place.value->getParameter()->label, wanted)) byLabel.push_back(place);
        names.push_back(NameOf(place));
    }
    const auto& found = byName.empty() ? byLabel : byName;
    if (found.size() == 1) return found.front();
    if (found.empty())
        throw Error(file, {}, "there is no parameter " + Quoted(wanted) + cli::NearestHint(wanted, names));
    std::string message = "there are several parameters " + Quoted(wanted) + "; say which:";
    for (const PresetPlace& place : found)
        message += (&place == &found.front() ? " " : " or ") + Quoted(LongNameOf(place));
    throw Error(file, {}, message);
}

FrameRange FramesOfKeys(const std::vector<PresetPlace>& places, const AnimationClock& clock) {
    FrameRange range{std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()};
    for (const PresetPlace& place : places) {
        for (std::int32_t i = 0; i < place.value->keyCount(); ++i) {
            const std::int32_t frame = place.value->keyAt(i)->frame(clock);
            range = {std::min(range.first, frame), std::max(range.last, frame)};
        }
    }
    return range.first <= range.last ? range : FrameRange{};
}

FrameRange ParseFrames(std::string_view text) {
    const std::size_t dots = text.find("..");
    if (dots == std::string_view::npos) throw Error("--frames: " + Quoted(text) + " is not a range such as 0..99");
    const FrameRange range{ParseInteger(text.substr(0, dots)), ParseInteger(text.substr(dots + 2))};
    if (range.last < range.first) throw Error("--frames: " + Quoted(text) + " runs backwards");
    return range;
}

}  // namespace chalkpane::app
