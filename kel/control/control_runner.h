#pragma once

#include <string>
#include <string_view>

#include "kel/control/control_command.h"
#include "kel/workspace/fitted_keys.h"
#include "kel/workspace/workspace.h"

namespace kel {

// Where commands take effect: a workspace with whatever shows it.
class ControlTarget {
public:
    virtual ~ControlTarget() = default;
    [[nodiscard]] virtual Workspace& TheWorkspace() = 0;
    // As they fit the chosen plug-in, which a command may have changed.
    [[nodiscard]] virtual const FittedKeys& Keys() = 0;
    virtual void DoAction(WorkspaceAction action) = 0;
    // What the operator's own press of that key does.
    virtual void DoKey(const FittedKeys::Key& key) = 0;

protected:
    ControlTarget() = default;
    ControlTarget(const ControlTarget&) = default;
    ControlTarget& operator=(const ControlTarget&) = default;
    ControlTarget(ControlTarget&&) = default;
    ControlTarget& operator=(ControlTarget&&) = default;
};

// Faders send 6.98 for 7 and switches 1.0 for true.
enum class ControlNumbers { Exact, OfFaders };

struct ControlAnswer {
    bool isDone = false;
    std::string json;  // an object on one line: {"ok":true} with what was asked for, or {"ok":false,"error":"..."}
};

// Does what the line asks, in the next field, as the panel and the keys do. What cannot be done is an answer too; then
// nothing has changed. Thread: the workspace's.
[[nodiscard]] ControlAnswer RunControlLine(ControlTarget& target, std::string_view line,
                                           ControlNumbers numbers = ControlNumbers::Exact);

[[nodiscard]] ControlAnswer RefusedAnswer(std::string_view reason);

}  // namespace kel
