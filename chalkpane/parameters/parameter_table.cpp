#include "chalkpane/parameters/parameter_table.h"

#include "chalkpane/parameters/animation/animated_file_name.h"
#include "chalkpane/parameters/number_conversion.h"

namespace chalkpane {

namespace {

// A whole number is a fine way to write the default of an enumeration, a flag or a double.
struct DefaultSetter {
    ParameterDef& definition;

    void operator()(std::monostate) const {}
    void operator()(int value) const {
        if (definition.type == ParameterType::enumeration) {
            definition.setDefault(static_cast<std::uint8_t>(value));
        } else if (definition.type == ParameterType::boolean) {
            definition.setDefault(value != 0);
        } else {
            definition.setDefault(std::int32_t{value});
        }
    }
    template <typename Value>
    void operator()(const Value& value) const {
        definition.setDefault(value);
    }
};

}  // namespace

void declareParameter(ParameterList& list, const ParameterDeclaration& declaration) {
    using enum ParameterType;
    ParameterDef& added = list.add(declaration.name, declaration.label, declaration.kind.type, declaration.code);
    const ParameterRange& range = declaration.range;
    const ParameterType type = declaration.kind.type;
    if (range.given && (type == integer || type == integerPair)) {
        added.setLimits(truncateToInteger(range.minimum), truncateToInteger(range.maximum));
    } else if (range.given) {
        added.setLimits(range.minimum, range.maximum);
    }
    std::visit(DefaultSetter{added}, declaration.defaultValue);
    if (declaration.kind.slider) added.flagC = 1;
}

void readFileName(const ParameterValue& value, FileName& field) {
    if (const auto* animated = dynamic_cast<const AnimatedFileName*>(&value)) {
        animated->getFileName(field);
    } else {
        FileNameValue::ask(value, field);
    }
}

}  // namespace chalkpane
