#include "tools/preset_choices.h"

#include "tools/paint/brush_choices.h"

namespace chalkpane::tools {

std::vector<std::string> ChoicesOf(const ParameterDef& definition, const Filter* filter) {
    if (definition.type != ParameterType::enumeration) return {};
    if (filter == nullptr) return BrushChoices(definition);
    std::vector<std::string> choices;
    for (std::int32_t i = 0; i < filter->EnumCount(definition); ++i)
        choices.emplace_back(filter->EnumLabel(definition, i));
    return choices;
}

}  // namespace chalkpane::tools
