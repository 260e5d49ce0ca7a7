#pragma once

#include <cstdint>
#include <vector>

#include "chalkpane/image/rect.h"

namespace chalkpane::obs {

// OBS hands whole textures to the graphics card, never a part of one. So a change goes there as squares of a few sizes,
// each through a texture of its size, and from that into the canvas's.
struct UploadSquare {
    std::int32_t side = 0;
    std::int32_t x = 0;  // of its upper left corner on the canvas
    std::int32_t y = 0;
};

inline constexpr std::int32_t uploadSides[] = {64, 256, 1024};  // the last one is the canvas

// Squares within the canvas that cover the change, all of one size: of those the one that costs least. The change lies
// within the canvas; nothing changed: no squares.
[[nodiscard]] std::vector<UploadSquare> PlanUpload(const Rect& changed);

}  // namespace chalkpane::obs
