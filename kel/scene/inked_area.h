#pragma once

#include "kel/scene/frame_buffer.h"
#include "kel/scene/objects.h"

namespace kel {

// The box around all of the image's pixels that are not clear black, as its texture holds them; all of the image where
// that is not known.
[[nodiscard]] FrameArea BoxAroundInk(const ImageObject& image);

}  // namespace kel
