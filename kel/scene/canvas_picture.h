#pragma once

#include "kel/scene/host.h"
#include "kel/scene/host_state.h"

namespace kel {

// The texture that the module has put on the container, upright; colours multiplied by
// alpha. Throws Error when there is none.
[[nodiscard]] picture_io::Picture CanvasPicture(HostState& state, const ContainerObject& container);

}  // namespace kel
