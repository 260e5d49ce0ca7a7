#pragma once

#include <cstdint>
#include <vector>

#include "picture_io/picture.h"
#include "telestrator/journal/ink_stroke.h"

namespace kel {

// The strokes on a canvas of their own, made so small; colours multiplied by alpha. side: a divisor of the canvas's, in
// pixels.
[[nodiscard]] picture_io::Picture InkThumbnail(const std::vector<chalkpane::SharedStroke>& strokes, std::int32_t side);

}  // namespace kel
