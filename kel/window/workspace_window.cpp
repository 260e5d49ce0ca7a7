#include "kel/window/workspace_window.h"

#include <utility>

#include "kel/window/window_loop.h"

namespace kel {

void RunWorkspaceWindow(WindowOptions options) { WindowLoop(std::move(options)).Run(); }

}  // namespace kel
