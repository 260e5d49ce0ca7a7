#pragma once

#include <array>
#include <optional>
#include <string>

#include "kel/workspace/workspace.h"

namespace kel {

// The operator's control of one parameter, by its kind: a switch, a slider with a field to type in, a choice, a color,
// a path. What the parameter does not take changes nothing.
class ValueControls {
public:
    // The parameter is the index in the order of registration; its value is that of the workspace's chosen plug-in.
    void Show(Workspace& workspace, std::size_t parameter);

    // Why the last typed value was not taken, once.
    [[nodiscard]] std::optional<std::string> TakeRefusal();

private:
    void ShowNumber(Workspace& workspace, std::size_t parameter);
    void ShowPath(Workspace& workspace, std::size_t parameter);
    void ShowTyped(Workspace& workspace, std::size_t parameter, float width);
    void Set(Workspace& workspace, std::size_t parameter, const ParameterValue& value);

    std::array<char, 1024> m_typed{};      // what is being typed
    std::optional<std::size_t> m_typedIn;  // into which parameter's field
    std::optional<std::string> m_refusal;
};

}  // namespace kel
