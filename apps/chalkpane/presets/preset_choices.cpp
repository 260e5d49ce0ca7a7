#include "apps/chalkpane/presets/preset_choices.h"

#include "apps/chalkpane/strokes/brush_choices.h"

namespace chalkpane::app {

std::vector<std::string> ChoicesOf(const ParameterDef& definition, const Filter* filter) {
    if (definition.type != ParameterType::enumeration) return {};
    if (filter == nullptr) return BrushChoices(definition);
    const std::int32_t count = filter->EnumCount(definition);
    std::vector<std::string> choices;
    choices.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i) choices.emplace_back(filter->EnumLabel(definition, i));
    return choices;
}

}  // namespace chalkpane::app
