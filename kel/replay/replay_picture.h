#pragma once

#include "chalkpane/image/image.h"
#include "chalkpane/image/rect.h"
#include "kel/scene/host.h"
#include "picture_io/picture.h"

namespace kel {

// The picture of a replay: a canvas of ink stretched over the whole of it, on a background or alone.
class ReplayPicture {
public:
    explicit ReplayPicture(WindowSize size);

    // The canvas has changed within the rectangle, in its own pixels.
    void TakeInk(const chalkpane::Image& canvas, const chalkpane::Rect& changed);
    // An opaque picture of this size; what alpha it has is taken off onto black.
    void SetBackground(const picture_io::Picture& background);

    // The ink alone; colours multiplied by alpha.
    [[nodiscard]] const picture_io::Picture& Ink() const { return m_ink; }
    // The ink over the background, which is black where none was set; opaque.
    [[nodiscard]] picture_io::Picture OverBackground() const;

private:
    picture_io::Picture m_ink;
    picture_io::Picture m_background;
};

}  // namespace kel
