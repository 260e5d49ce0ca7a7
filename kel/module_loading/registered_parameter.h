#pragma once

#include <cstdint>

#include "kel/module_loading/parameter.h"

namespace kel {

// A parameter of each kind, from what the host function that registers it is given. The name is there; a label that is
// not is the name. All texts are copied.
[[nodiscard]] Parameter BoolParameter(const char* name, const char* label, std::int32_t defaultValue);
[[nodiscard]] Parameter IntParameter(const char* name, const char* label, std::int32_t defaultValue,
                                     std::int32_t minimum, std::int32_t maximum);
[[nodiscard]] Parameter FloatParameter(const char* name, const char* label, float defaultValue, float minimum,
                                       float maximum);
// Four bytes in memory order red, green, blue, alpha.
[[nodiscard]] Parameter ColourParameter(const char* name, const char* label, std::uint32_t defaultValue);
// defaultName: may be null.
[[nodiscard]] Parameter ImageParameter(const char* name, const char* label, const char* defaultName);
// options: end with a null pointer; may be null.
[[nodiscard]] Parameter RadioParameter(const char* name, const char* label, std::int32_t defaultValue,
                                       const char* const* options);

}  // namespace kel
