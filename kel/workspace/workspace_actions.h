#pragma once

#include "kel/workspace/workspace.h"

namespace kel {

// Does an action that needs no display: saving, undo, ink and the film. False: it is one of the display's, and nothing
// was done.
bool DoWithoutDisplay(Workspace& workspace, WorkspaceAction action);

}  // namespace kel
