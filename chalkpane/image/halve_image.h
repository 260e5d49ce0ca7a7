#pragma once

#include <memory>

#include "chalkpane/image/image.h"

namespace chalkpane {

// The image at half its size, or between its own size and half.
//
//   blend  0: a new image of half the size, rounded up, through the 1-2-1 filter; it starts at (x0 / 2, y0 / 2).
//          above 0, to 1: a new image of the full size in which each pixel lies between the reduced picture (towards 0)
//          and the source's own pixel (at 1), for a smooth zoom
//
// The grid holds the even plane coordinates, so that images beside each other are reduced alike wherever they start.
// Null for an image of width or height 1, or without pixels.
[[nodiscard]] std::unique_ptr<Image> HalveImage(const Image& source, double blend);

}  // namespace chalkpane
