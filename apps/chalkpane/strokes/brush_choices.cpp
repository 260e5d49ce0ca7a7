#include "apps/chalkpane/strokes/brush_choices.h"

#include <algorithm>
#include <string_view>

#include "chalkpane/brush/profiles/profile_preset.h"
#include "chalkpane/composite/blending_modes.h"

namespace chalkpane::app {
namespace {

// The blend modes have a table of their own.
struct ChoiceRow {
    std::string_view parameter;  // its long name
    std::vector<std::string> words;
};

const std::vector<ChoiceRow>& ChoiceRows() {
    static const std::vector<ChoiceRow> rows = {
        {"Brush Source Type", {"Color", "Clone", "Image", "Cutout", "Splodge", "Eraser", "Replace", "7", "8"}},
        {"Brush Space Type", {"Keep", "Shorten and Thin", "Shorten"}},
        {"Brush Pickup", {"Off", "Once", "Every Dab"}},
        {"Brush Preset Type", {"Graph", "Image", "One Pixel", "Texture", "Feathered"}},
        {"Brush Selection Policy", {"Random", "Forward", "Forward and Back"}},
    };
    return rows;
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
    const auto& rows = ChoiceRows();
    const auto found = std::ranges::find(rows, definition.name, &ChoiceRow::parameter);
    return found != rows.end() ? found->words : std::vector<std::string>();
}

std::vector<std::string> ProfileNames() {
    std::vector<std::string> names = {"Soft", "Texture", "Feathered", "OnePixel"};
    for (const ProfilePreset& preset : ProfilePresets()) names.push_back(preset.name);
    return names;
}

}  // namespace chalkpane::app
