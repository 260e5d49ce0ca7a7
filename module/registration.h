#pragma once

namespace chalkpane {

// Names the plug-in, its parameters and its buttons to the host.
void RegisterPlugin();

}  // namespace chalkpane
