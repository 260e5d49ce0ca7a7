#include "apps/chalkpane/values/parameter_text.h"

#include <utility>

#include "apps/chalkpane/values/parameter_types.h"
#include "apps/chalkpane/values/value_parsing.h"
#include "cli/error.h"
#include "cli/nearest_name.h"

namespace chalkpane::app {

using cli::Error;

ParameterTexts::ParameterTexts(std::string where, const ParameterList& list, Choices choices)
    : m_where(std::move(where)), m_list(&list), m_choices(std::move(choices)) {}

std::vector<std::string> ParameterTexts::ChoicesOf(const ParameterDef& definition) const {
    if (!m_choices || definition.type != ParameterType::enumeration) return {};
    return m_choices(definition);
}

const ParameterDef& ParameterTexts::Find(std::string_view name) const {
    const std::string_view wanted = Trimmed(name);
    std::vector<std::string> labels;
    const ParameterDef* byKey = nullptr;
    for (const auto& definition : *m_list) {
        if (TextOfType(definition->type) == nullptr) continue;
        if (SameName(definition->label, wanted)) return *definition;
        if (byKey == nullptr && SameName(definition->name, wanted)) byKey = definition.get();
        labels.push_back(definition->label);
    }
    if (byKey != nullptr) return *byKey;
    const std::string hint = labels.empty() ? "; there are none" : cli::NearestHint(wanted, labels);
    throw Error(m_where, {}, "there is no parameter " + cli::Quoted(wanted) + hint);
}

void ParameterTexts::SetText(ParameterValue& value, std::string_view text) const {
    const ParameterDef& definition = *value.getParameter();
    const auto choices = ChoicesOf(definition);
    try {
        if (const ParameterTypeText* const type = TextOfType(definition.type))
            type->set(value, text, {definition, choices});
    } catch (const Error& error) {
        throw Error(m_where, definition.label, error.what());
    }
}

std::string ParameterTexts::TextOf(const ParameterValue& value) const {
    const ParameterDef& definition = *value.getParameter();
    const auto choices = ChoicesOf(definition);
    const ParameterTypeText* const type = TextOfType(definition.type);
    return type != nullptr ? type->tell(value, {definition, choices}) : std::string();
}

ParameterDescription ParameterTexts::Describe(const ParameterDef& definition) const {
    const ParameterTypeText* const type = TextOfType(definition.type);
    ParameterDescription description{
        &definition, definition.label,     definition.name, type != nullptr ? type->word : "", {}, {},
        {},          ChoicesOf(definition)};
    double low = 0.0;
    double high = 0.0;
    if (definition.getRange(low, high)) {
        description.minimum = TextOfLimit(definition.type, low);
        description.maximum = TextOfLimit(definition.type, high);
    }
    // A fresh value answers the default, or zero where none is declared.
    if (const ValuePointer fresh = DataSet::createValue(&definition, false, nullptr))
        description.defaultText = TextOf(*fresh);
    return description;
}

std::vector<ParameterDescription> ParameterTexts::Describe() const {
    std::vector<ParameterDescription> descriptions;
    for (const auto& definition : *m_list)
        if (TextOfType(definition->type) != nullptr) descriptions.push_back(Describe(*definition));
    return descriptions;
}

ParameterValue& ParameterTexts::Set(DataSet& values, std::string_view name, std::string_view text) const {
    const ParameterDef& definition = Find(name);
    ParameterValue* value = values.findValue(&definition);
    if (value == nullptr) value = values.addParameter(&definition, false, nullptr);
    if (value == nullptr) throw Error(m_where, definition.label, "has no value that a text could set");
    SetText(*value, text);
    return *value;
}

}  // namespace chalkpane::app
