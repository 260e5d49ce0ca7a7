#pragma once

#include "kel/scene/host_state.h"

namespace kel {

// What the scene is made to look like: as it is; without what modules draw; or with everything but that in one plain
// colour, shapes and alpha as they are.
enum class Look { AsItIs, Undrawn, Black, White };

// Draws all containers into the target, each between its instance's pre and post render.
void RenderScene(HostState& state, const FrameBuffer& target, Look look);

// Draws a part of the scene once more, with what modules asked of OpenGL in their last render callbacks, which are not
// run. All else of the target stays as it was.
void DrawAgain(HostState& state, const FrameBuffer& target, Look look, const FrameArea& part);

// The same into the host's frame, as it is: only what has changed since it was drawn last, where that can be told. The
// picture is that of RenderScene, byte for byte. Without drawing, what changes is kept for the next time.
void RenderField(HostState& state);

// Draws all of the host's frame with what modules asked of OpenGL last. The next field is drawn as if this had not
// been.
void DrawFieldAgain(HostState& state);

// One container's render callbacks, as in a field that is not drawn.
void RunRenderCallbacks(HostState& state, ContainerObject& container);

// Puts OpenGL's state back to what every container starts from, whatever was left before.
void ResetState(Look look = Look::AsItIs);

}  // namespace kel
