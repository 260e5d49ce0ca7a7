#pragma once

#include "kel/scene/host_state.h"
#include "kel/scene/matrix.h"

namespace kel {

// Width over height.
[[nodiscard]] double Aspect(WindowSize window);

// The projection times view of the scene's current camera for this window.
[[nodiscard]] Matrix CurrentCameraMatrix(HostState& state);

// The container that window point (x, y), y from the top, lies on: the nearest to the camera; of several at the same
// place the one drawn last. noObject when there is none.
[[nodiscard]] ObjectId ContainerUnder(HostState& state, std::int32_t x, std::int32_t y);

}  // namespace kel
