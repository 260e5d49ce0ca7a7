#pragma once

#include <memory>

#include "kel/scene/host.h"

struct SDL_Window;

namespace kel {

// Brings the scene's picture into the window past OpenGL, where that is software: there it takes several times as long
// to draw a picture over the window as to read it and hand it to the display through shared memory. What is shown so is
// not in OpenGL's back buffer.
class PicturePutter {
public:
    explicit PicturePutter(SDL_Window* window);  // its context is current
    ~PicturePutter();
    PicturePutter(const PicturePutter&) = delete;
    PicturePutter& operator=(const PicturePutter&) = delete;
    PicturePutter(PicturePutter&&) = delete;
    PicturePutter& operator=(PicturePutter&&) = delete;

    // Shows a part of the picture, pixel by pixel. False: that is not possible here, and nothing was done.
    //   picture  where it stands, in the window's pixels from its lower left corner; as large as the scene
    //   part     of the window, within the picture and within the window
    [[nodiscard]] bool Put(const Host& host, const FrameArea& picture, const FrameArea& part, WindowSize window);

private:
    struct Display;
    std::unique_ptr<Display> m_display;  // null: not possible
};

}  // namespace kel
