#pragma once

#include "host/host_state.h"

namespace kel {

// Draws all containers into the frame, each between its instance's pre and post render.
void RenderScene(HostState& state);

// Makes the image's texture anew from its pixels.
void BuildTexture(ImageObject& image);

// An image of the host's own, from a picture; smooth also when seen small. Its texture is built at its first render.
[[nodiscard]] ImageObject MakeImage(const Picture& picture);

}  // namespace kel
