#pragma once

#include "host/host.h"
#include "host/host_state.h"

namespace kel {

// The texture that the module has put on the container, upright. Throws Error when there is none.
[[nodiscard]] Picture CanvasPicture(HostState& state, const ContainerObject& container, AlphaForm form);

}  // namespace kel
