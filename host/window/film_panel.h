#pragma once

#include <vector>

#include "host/window/desk.h"
#include "host/window/fitted_keys.h"

namespace kel {

// The film's controls, in the window that is being made: play, step, seek, loop. Nothing where the scene has no film.
void ShowFilmPanel(Desk& desk, const FittedKeys& keys, std::vector<DeskAction>& asked);

}  // namespace kel
