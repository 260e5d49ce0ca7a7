#pragma once

#include <memory>

#include "chalkpane/brush/sources/image_brush_source.h"

namespace chalkpane {

// Dabs of one colour each: that of the picture under the middle of the dab.
class SplodgeBrushSource final : public ImageBrushSource {
public:
    using ImageBrushSource::ImageBrushSource;

    // A dab whose middle lies outside the picture stays zero.
    bool MakeDab(double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                 std::unique_ptr<Image>& maskOut) override;
};

}  // namespace chalkpane
