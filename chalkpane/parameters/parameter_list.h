#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "chalkpane/parameters/parameter_def.h"

namespace chalkpane {

// The parameters of one class in the order of their declaration: one list per class, filled when the first object of
// the class is made and never freed while the module lives. Owns its records.
//
// The helpers declare one parameter each and append it; all take the long unique name before the short label. Limits
// are advice to controls (see ParameterDef).
class ParameterList {
public:
    ParameterDef& add(const std::string& name, const std::string& label, ParameterType type, std::uint8_t code);

    ParameterDef& addBoolean(const std::string& name, const std::string& label, int defaultValue, std::uint8_t code);
    ParameterDef& addInteger(const std::string& name, const std::string& label, std::int32_t defaultValue,
                             std::int32_t minimum, std::int32_t maximum, std::uint8_t code);
    ParameterDef& addFloat(const std::string& name, const std::string& label, float defaultValue, float minimum,
                           float maximum, std::uint8_t code);
    ParameterDef& addUnitFloat(const std::string& name, const std::string& label, float defaultValue, float minimum,
                               float maximum, std::uint8_t code);
    ParameterDef& addAngle360(const std::string& name, const std::string& label, float defaultValue, float minimum,
                              float maximum, std::uint8_t code);
    ParameterDef& addAngle(const std::string& name, const std::string& label, float defaultValue, float minimum,
                           float maximum, std::uint8_t code);
    // KEEP: the code comes first here.
    ParameterDef& addPercent(const std::string& name, const std::string& label, std::uint8_t code, double defaultValue,
                             double minimum, double maximum);
    ParameterDef& addColour(const std::string& name, const std::string& label, const Colour& defaultValue,
                            std::uint8_t code);
    // KEEP: a graph declared so has code 0.
    ParameterDef& addGraph(const std::string& name, const std::string& label);
    ParameterDef& addEnumeration(const std::string& name, const std::string& label, std::uint8_t defaultValue,
                                 std::uint8_t code);
    // The begin and the end of a group of controls; no value class exists.
    ParameterDef& addTypeNineteen(const std::string& name, const std::string& label, std::uint8_t code);
    ParameterDef& addTypeTwenty(const std::string& name, const std::string& label, std::uint8_t code);

    // The parameter of that code, or null. Looks at the entry whose index is the code first, then from the front.
    ParameterDef* find(std::uint8_t code) const;
    // The same by the name of a code.
    template <typename Code>
    requires std::is_enum_v<Code> ParameterDef* find(Code code) const { return find(static_cast<std::uint8_t>(code)); }

    std::size_t size() const { return entries.size(); }
    ParameterDef& operator[](std::size_t index) const { return *entries[index]; }
    auto begin() const { return entries.begin(); }  // of unique_ptr<ParameterDef>
    auto end() const { return entries.end(); }

private:
    ParameterDef& addRangedFloat(const std::string& name, const std::string& label, ParameterType type,
                                 float defaultValue, float minimum, float maximum, std::uint8_t code);

    std::vector<std::unique_ptr<ParameterDef>> entries;
};

}  // namespace chalkpane
