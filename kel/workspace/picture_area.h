#pragma once

#include <cstdint>

#include "kel/scene/host.h"

namespace kel {

// Where a scene's picture stands in a window: as large as fits beside the panel and above the status line, in its own
// proportions, in the middle of what is free there.
struct PictureArea {
    std::int32_t x = 0;  // window pixels, from the left
    std::int32_t y = 0;  // from the top
    std::int32_t width = 0;
    std::int32_t height = 0;

    [[nodiscard]] bool Contains(std::int32_t windowX, std::int32_t windowY) const;
    friend bool operator==(const PictureArea&, const PictureArea&) = default;
};

// free: what of the window the picture may take, from its upper left corner
[[nodiscard]] PictureArea FitPicture(WindowSize scene, WindowSize free);

// How large a scene is shown at first: at its own size or smaller, so that it fits into `room`; one much smaller
// than a screen is enlarged.
[[nodiscard]] WindowSize FirstSize(WindowSize scene, WindowSize room);

struct ScenePixel {
    std::int32_t x = 0;
    std::int32_t y = 0;
    friend bool operator==(const ScenePixel&, const ScenePixel&) = default;
};

// The pixel of the scene's window that is seen there; outside the area those that would be.
[[nodiscard]] ScenePixel SceneAt(const PictureArea& area, WindowSize scene, std::int32_t windowX, std::int32_t windowY);

}  // namespace kel
