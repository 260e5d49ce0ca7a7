#pragma once

#include "kel/workspace/picture_area.h"

namespace kel {

// A closer look at the picture, which is shown larger than fits. Nothing but the display knows of it.
class PictureZoom {
public:
    static constexpr double closest = 16;  // times as large as what fits

    // Closer or farther, with the place under the window's pixel (x, y) staying there.
    //   fit   where the picture stands without any zoom
    //   free  what of the window the picture may take, from its upper left corner
    void By(double factor, std::int32_t x, std::int32_t y, const PictureArea& fit, WindowSize free);
    // Moves what is seen by so many window pixels.
    void Move(std::int32_t right, std::int32_t down, const PictureArea& fit, WindowSize free);
    void Reset() { *this = {}; }
    [[nodiscard]] bool IsZoomed() const { return m_scale > 1; }
    [[nodiscard]] double Scale() const { return m_scale; }

    // Where all of the picture stands then, which reaches beyond what is free.
    [[nodiscard]] PictureArea Place(const PictureArea& fit, WindowSize free) const;

private:
    double m_scale = 1;
    double m_centreX = 0.5;  // share of the picture's width that stands in the middle of what is free
    double m_centreY = 0.5;
};

}  // namespace kel
