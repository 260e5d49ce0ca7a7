#pragma once

#include <array>
#include <cstdint>
#include <deque>

#include "kel/scene/frame_buffer.h"
#include "kel/workspace/brush_look.h"
#include "kel/workspace/picture_area.h"

namespace kel {

// What the pen looks like where it draws.
struct TailPen {
    std::array<std::uint8_t, 3> colour{};
    bool isSeen = false;  // false: there is nothing to show
};

// The last piece of a stroke, which the module holds back until it knows how the path bends: shown from the ink to the
// pointer while the button is down, in the window alone. It is drawn over the picture and never into it.
class InkTail {
public:
    //   dab  what of the pen is seen there, in scene pixels
    void Press(const ScenePixel& at, const SeenDab& dab, const TailPen& pen);
    void Move(const ScenePixel& at, const SeenDab& dab);
    // The module draws the rest of the stroke by itself.
    void End() { m_places.clear(); }

    // What of the window it covers now, in pixels from the lower left corner; empty: nothing.
    //   picture  where the picture stands, from the upper left corner
    [[nodiscard]] FrameArea Area(const PictureArea& picture, WindowSize scene, WindowSize window) const;
    // Draws it into the current window, within the part.
    void Draw(const PictureArea& picture, WindowSize scene, WindowSize window, const FrameArea& part) const;

private:
    struct Place {
        ScenePixel at;
        SeenDab dab;
    };
    std::deque<Place> m_places;  // of the pointer, the last few
    TailPen m_pen;
};

}  // namespace kel
