#include "apps/chalkpane/strokes/brush_choices.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "chalkpane/brush/brush_choices.h"
#include "chalkpane/brush/profiles/profile_preset.h"
#include "chalkpane/brush/sources/source_types.h"
#include "chalkpane/composite/blending_modes.h"

namespace chalkpane::app {
namespace {

template <std::size_t count>
std::vector<std::string> WordsOf(const std::array<std::string_view, count>& names) {
    return {names.begin(), names.end()};
}

// What has no name of its own is chosen by its number.
std::vector<std::string> SourceTypeWords() {
    std::vector<std::string> words;
    for (const SourceTypeRow& row : SourceTypes())
        words.push_back(row.name.empty() ? std::to_string(static_cast<int>(row.type)) : std::string(row.name));
    return words;
}

std::vector<std::string> BlendModeWords() {
    std::vector<std::string> words;
    words.reserve(BlendModeNames.size());
    for (const std::string_view name : BlendModeNames)
        words.push_back(name.empty() ? std::to_string(words.size()) : std::string(name));
    return words;
}

}  // namespace

std::vector<std::string> BrushChoices(const ParameterDef& definition) {
    if (definition.name == "Brush Blend Mode") return BlendModeWords();
    if (definition.name == "Brush Source Type") return SourceTypeWords();
    if (definition.name == "Brush Space Type") return WordsOf(SpacingTypeNames);
    if (definition.name == "Brush Pickup") return WordsOf(PickupModeNames);
    if (definition.name == "Brush Preset Type") return WordsOf(ProfileTypeNames);
    if (definition.name == "Brush Selection Policy") return WordsOf(SelectionPolicyNames);
    return {};
}

std::vector<std::string> ProfileNames() {
    std::vector<std::string> names = {"Soft", "Texture", "Feathered", "OnePixel"};
    for (const ProfilePreset& preset : ProfilePresets()) names.push_back(preset.name);
    return names;
}

}  // namespace chalkpane::app
