#pragma once

#include <memory>

#include "chalkpane/filters/work_area.h"

namespace chalkpane {

// `ApplyInWorkArea` without growth for effects on colour, which have nothing to say to the one channel of a mask: a
// mask comes back as it is, cut down to the region.
template <typename Make>
void ApplyInColourArea(const Image& source, std::unique_ptr<Image>& result, const Rect* region, Make make) {
    ApplyInWorkArea(source, result, region, 0, [&](const Rect& work) -> std::unique_ptr<Image> {
        if (!source.IsMask()) return make(work);
        auto copy = Image::Unwritten(work, source);
        copy->CopyRegion(source, work);
        return copy;
    });
}

// Degrees in radians, for directions that are settings of type float.
// KEEP: 32-bit floats, product included.
[[nodiscard]] inline float Radians(float degrees) { return degrees * 0.017453292F; }

}  // namespace chalkpane
