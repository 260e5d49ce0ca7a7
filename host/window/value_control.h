#pragma once

#include <array>
#include <optional>
#include <string>

#include "host/window/desk.h"

namespace kel {

// The operator's control of one parameter, by its kind: a switch, a slider with a field to type in, a choice, a color,
// a path. What the parameter does not take changes nothing.
class ValueControls {
public:
    // The parameter is the index in the order of registration; its value is that of the desk's chosen plug-in.
    void Show(Desk& desk, std::size_t parameter);

    // Why the last typed value was not taken, once.
    [[nodiscard]] std::optional<std::string> TakeRefusal();

private:
    void ShowNumber(Desk& desk, std::size_t parameter);
    void ShowPath(Desk& desk, std::size_t parameter);
    void ShowTyped(Desk& desk, std::size_t parameter, float width);
    void Set(Desk& desk, std::size_t parameter, const ParameterValue& value);

    std::array<char, 1024> m_typed{};      // what is being typed
    std::optional<std::size_t> m_typedIn;  // into which parameter's field
    std::optional<std::string> m_refusal;
};

}  // namespace kel
