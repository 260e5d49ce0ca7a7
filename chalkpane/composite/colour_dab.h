#pragma once

#include <cstdint>

#include "chalkpane/composite/paste_record.h"

namespace chalkpane {

// A dab of one colour that stands on images kept elsewhere, which may lie anywhere: a stroke has thousands of them, and
// images made for each would cost more than their pixels.
struct ColourDab {
    const Image* colour = nullptr;  // four channels, the same opaque pixel all over; at least as wide as the mask
    const Image* mask = nullptr;    // one channel
    Rect rect;                      // where the mask lies in the plane of the target, in its own size
};

// What `BrushPaster::Paste` does with images of the dab at its rectangle, and no clip.
//   part  of the dab's rectangle, in the plane of the target
void PasteColourDab(const ColourDab& dab, const Rect& part, Image& target, PasteBehaviour behaviour, double opacity,
                    std::uint8_t mode);

// The same of `Eraser::Paste`.
void EraseColourDab(const ColourDab& dab, const Rect& part, Image& target, double opacity);

}  // namespace chalkpane
