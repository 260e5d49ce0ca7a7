#pragma once

#include <optional>

#include "kel/workspace/workspace.h"

namespace kel {

// The end of a pen that erases: while it is used the chosen plug-in's brush is an eraser, and what it was before
// afterwards, unless the operator has chosen something else meanwhile. Modules without such a parameter are left alone.
class EraserEnd {
public:
    // At the beginning of a stroke, before its press.
    void Use(Workspace& workspace, bool isEraser);

private:
    struct Before {
        const Registration* registration = nullptr;
        ParameterValue value;
    };
    std::optional<Before> m_before;  // nothing: the brush is the operator's
};

}  // namespace kel
