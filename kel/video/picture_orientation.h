#pragma once

#include "kel/video/av_objects.h"
#include "picture_io/picture.h"

namespace kel {

// How stored pixels are brought upright: a phone stores what its sensor sees and notes how it was held. A picture's
// axes are exchanged first, then its columns and its rows are reversed.
struct PictureOrientation {
    bool exchangesAxes = false;
    bool reversesColumns = false;
    bool reversesRows = false;

    [[nodiscard]] bool IsUpright() const { return !exchangesAxes && !reversesColumns && !reversesRows; }
    friend bool operator==(const PictureOrientation&, const PictureOrientation&) = default;
};

// What the stream's display matrix says, to the nearest quarter of a rotation; upright when it has none or one that
// means nothing.
[[nodiscard]] PictureOrientation OrientationOf(const AVStream& stream);

[[nodiscard]] picture_io::Picture Upright(picture_io::Picture picture, const PictureOrientation& orientation);

}  // namespace kel
