#pragma once

#include "kel/module_loading/parameter.h"
#include "kel/session/session.h"

namespace kel {

// A session's value in the form that the parameter takes. A session writes true and false, whole and real numbers,
// colours as "#rrggbb" or "#rrggbbaa", a radio's option by its text, and an image by its path. Throws Error with the
// value's place when it is of another kind or beyond the parameter's limits.
[[nodiscard]] ParameterValue ToParameterValue(const Session& session, const SessionValue& value,
                                              const Parameter& parameter);

// The other way round, as it is written in a session: texts without quotes.
[[nodiscard]] std::string SessionText(const Parameter& parameter, const ParameterValue& value);

// The value's parameter; throws Error with its place and the nearest name when the module has none of that name.
[[nodiscard]] const Parameter& ParameterOf(const Session& session, const SessionValue& value,
                                           const std::vector<Parameter>& parameters);

}  // namespace kel
