#pragma once

#include <cstdint>
#include <vector>

#include "picture_io/picture.h"
#include "telestrator/journal/ink_stroke.h"

namespace kel {

// The strokes on a canvas of their own, of which a square that holds them all is made so small; colours multiplied by
// alpha. side: 64 or a divisor of it, in pixels.
[[nodiscard]] picture_io::Picture InkThumbnail(const std::vector<chalkpane::SharedStroke>& strokes, std::int32_t side);

}  // namespace kel
