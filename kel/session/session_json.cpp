#include "kel/session/session_json.h"

#include <nlohmann/json.hpp>

#include "kel/session/session_values.h"

namespace kel {

nlohmann::ordered_json JsonValue(const Parameter& parameter, const ParameterValue& value) {
    if (parameter.kind == ParameterKind::Bool) return std::get<std::int32_t>(value) != 0;
    if (parameter.kind == ParameterKind::Int) return std::get<std::int32_t>(value);
    if (parameter.kind == ParameterKind::Float) return std::get<float>(value);
    return SessionText(parameter, value);
}

}  // namespace kel
