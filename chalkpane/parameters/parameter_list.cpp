#include "chalkpane/parameters/parameter_list.h"

namespace chalkpane {

ParameterDef& ParameterList::add(const std::string& name, const std::string& label, ParameterType type,
                                 std::uint8_t code) {
    return *entries.emplace_back(std::make_unique<ParameterDef>(name, label, type, code));
}

ParameterDef& ParameterList::addBoolean(const std::string& name, const std::string& label, int defaultValue,
                                        std::uint8_t code) {
    ParameterDef& added = add(name, label, ParameterType::boolean, code);
    added.setDefault(defaultValue != 0);
    return added;
}

ParameterDef& ParameterList::addInteger(const std::string& name, const std::string& label, std::int32_t defaultValue,
                                        std::int32_t minimum, std::int32_t maximum, std::uint8_t code) {
    ParameterDef& added = add(name, label, ParameterType::integer, code);
    added.setLimits(minimum, maximum);
    added.setDefault(defaultValue);
    return added;
}

ParameterDef& ParameterList::addRangedFloat(const std::string& name, const std::string& label, ParameterType type,
                                            float defaultValue, float minimum, float maximum, std::uint8_t code) {
    ParameterDef& added = add(name, label, type, code);
    added.setLimits(minimum, maximum);
    added.setDefault(defaultValue);
    return added;
}

ParameterDef& ParameterList::addFloat(const std::string& name, const std::string& label, float defaultValue,
                                      float minimum, float maximum, std::uint8_t code) {
    return addRangedFloat(name, label, ParameterType::float32, defaultValue, minimum, maximum, code);
}

ParameterDef& ParameterList::addUnitFloat(const std::string& name, const std::string& label, float defaultValue,
                                          float minimum, float maximum, std::uint8_t code) {
    ParameterDef& added = addFloat(name, label, defaultValue, minimum, maximum, code);
    added.flagC = 1;
    return added;
}

ParameterDef& ParameterList::addAngle360(const std::string& name, const std::string& label, float defaultValue,
                                         float minimum, float maximum, std::uint8_t code) {
    return addRangedFloat(name, label, ParameterType::angle0To360, defaultValue, minimum, maximum, code);
}

ParameterDef& ParameterList::addAngle(const std::string& name, const std::string& label, float defaultValue,
                                      float minimum, float maximum, std::uint8_t code) {
    return addRangedFloat(name, label, ParameterType::angle360, defaultValue, minimum, maximum, code);
}

ParameterDef& ParameterList::addPercent(const std::string& name, const std::string& label, std::uint8_t code,
                                        double defaultValue, double minimum, double maximum) {
    ParameterDef& added = add(name, label, ParameterType::real, code);
    added.setLimits(minimum, maximum);
    added.setDefault(defaultValue);
    added.flagC = 1;
    return added;
}

ParameterDef& ParameterList::addColour(const std::string& name, const std::string& label, const Colour& defaultValue,
                                       std::uint8_t code) {
    ParameterDef& added = add(name, label, ParameterType::colour, code);
    added.setDefault(defaultValue);
    return added;
}

ParameterDef& ParameterList::addGraph(const std::string& name, const std::string& label) {
    return add(name, label, ParameterType::graph, 0);
}

ParameterDef& ParameterList::addEnumeration(const std::string& name, const std::string& label,
                                            std::uint8_t defaultValue, std::uint8_t code) {
    ParameterDef& added = add(name, label, ParameterType::enumeration, code);
    added.setDefault(defaultValue);
    return added;
}

ParameterDef& ParameterList::addTypeNineteen(const std::string& name, const std::string& label, std::uint8_t code) {
    return add(name, label, ParameterType::groupBegin, code);
}

ParameterDef& ParameterList::addTypeTwenty(const std::string& name, const std::string& label, std::uint8_t code) {
    return add(name, label, ParameterType::groupEnd, code);
}

ParameterDef* ParameterList::find(std::uint8_t code) const {
    if (code < entries.size() && entries[code]->code == code) return entries[code].get();
    for (const auto& entry : entries)
        if (entry->code == code) return entry.get();
    return nullptr;
}

}  // namespace chalkpane
