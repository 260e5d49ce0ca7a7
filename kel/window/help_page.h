#pragma once

#include "kel/workspace/fitted_keys.h"
#include "kel/workspace/picture_area.h"

namespace kel {

// All keys and what they do, in the middle of the picture. Those that the module has no use for are faint.
void ShowHelpPage(const FittedKeys& keys, const PictureArea& area);

}  // namespace kel
