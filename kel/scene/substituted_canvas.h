#pragma once

#include "kel/scene/host_state.h"

namespace kel {

// The image of the texture that the module has put on the container; null when there is none. Its texture is built.
[[nodiscard]] ImageObject* CanvasImage(HostState& state, const ContainerObject& container);

// Loads what has changed of the container's substitute into the module's texture, also where the module has just loaded
// something itself. Of another size than the texture, nothing is loaded.
void ShowSubstitute(HostState& state, const ContainerObject& container);

}  // namespace kel
