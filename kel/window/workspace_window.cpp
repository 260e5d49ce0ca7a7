#include "kel/window/workspace_window.h"

#include "kel/window/window_loop.h"

namespace kel {

void RunWorkspaceWindow(const WindowOptions& options) { WindowLoop(options).Run(); }

}  // namespace kel
