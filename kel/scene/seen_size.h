#pragma once

#include <cstdint>

#include "kel/scene/matrix.h"

namespace kel {

struct ImageSize {
    std::int32_t width = 0;  // pixels
    std::int32_t height = 0;
};

// True: a picture that is spread over all of the container is seen so small, or so much at a slant, that several of its
// pixels may fall on one of the window's anywhere on it. False: nowhere do more than one and a fifth, so that the
// picture alone, without smaller copies of it, looks the same.
//   camera  from the world to the unit cube
//   window  in pixels
[[nodiscard]] bool IsSeenSmall(ImageSize picture, const Placement& container, const Matrix& camera, ImageSize window);

}  // namespace kel
