#pragma once

#include <vector>

#include "kel/workspace/fitted_keys.h"
#include "kel/workspace/workspace.h"

namespace kel {

// The video's controls, in the window that is being made: play, step, seek, loop; of live pictures, their replay's.
// Nothing where the scene has no video.
void ShowVideoPanel(Workspace& workspace, const FittedKeys& keys, std::vector<WorkspaceAction>& asked);

}  // namespace kel
