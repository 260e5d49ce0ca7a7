#pragma once

#include <cstdint>

#include "chalkpane/composite/paste_record.h"
#include "chalkpane/image/pixel_format.h"
#include "chalkpane/parameters/parameter_table.h"

namespace chalkpane {

// Removes paint under a dab: scales all four channels of the premultiplied target towards zero by the coverage, so
// colour and alpha fall together and repeated dabs approach zero.
//
//   source   read for its depth alone, which all images share
//   mask, target, rect, clip   as for `BrushPaster::Paste`
//
// Borrows all images for the call. A paste without overlap, with opacity 0 or below or NaN, or of images that
// do not fit one another changes nothing. Thread: the brushes'; the rows run on the workers.
class Eraser : public WithParameters<Eraser, ParameterisedObject>, public ImageChannels {
public:
    static constexpr auto Parameters() {
        return std::to_array<ParameterRow<Eraser>>({
            {0, "Opacity", "Erase Opacity", 1.0, {0, 1}, &Eraser::opacity, percent},
        });
    }

    virtual void Paste(const Image& source, const Image* mask, Image& target, const Rect& rect, std::int32_t reserved,
                       const Image* clip, Clip clipInverted);
    // What an erasing dab needs around `region`: nothing.
    [[nodiscard]] virtual Rect InputRegion(const Rect& region) const { return region; }

    // 0.0 .. 1.0, not clamped. Persists until set again.
    void SetOpacity(double value) { opacity = value; }

private:
    double opacity = 1.0;
};

// One for each thread that paints, as the paster is.
Eraser& SharedEraser();

}  // namespace chalkpane
