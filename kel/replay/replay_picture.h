#pragma once

#include <array>
#include <memory>

#include "chalkpane/image/image.h"
#include "chalkpane/image/rect.h"
#include "kel/scene/host.h"
#include "kel/video/picture_part.h"
#include "picture_io/picture.h"

namespace kel {

// The picture of a replay: a canvas of ink stretched over the whole of it, on a background or alone.
class ReplayPicture {
public:
    explicit ReplayPicture(WindowSize size);

    // The canvas has changed within the rectangle, in its own pixels. Returns where the picture has.
    PicturePart TakeInk(const chalkpane::Image& canvas, const chalkpane::Rect& changed);
    // An opaque picture of this size; what alpha it has is taken off onto black.
    void SetBackground(const picture_io::Picture& background);

    // The ink alone; colours multiplied by alpha.
    [[nodiscard]] const picture_io::Picture& Ink() const { return m_ink; }
    // The same to keep: nobody changes it while it is held.
    [[nodiscard]] std::shared_ptr<const picture_io::Picture> SharedInk();
    // The ink over the background, which is black where none was set; opaque.
    [[nodiscard]] picture_io::Picture OverBackground() const;

private:
    // A picture that was handed out, and where the ink has changed since.
    struct Copy {
        std::shared_ptr<picture_io::Picture> picture;
        PicturePart stale;
    };

    picture_io::Picture m_ink;
    std::array<Copy, 2> m_copies;  // the one is held while the other is brought up to date
    picture_io::Picture m_background;
};

}  // namespace kel
