#pragma once

#include "kel/workspace/picture_area.h"

struct SDL_Window;

namespace kel {

// A window over all of its display, with the display's own pixels. Where nobody manages windows, as on a display that
// shows this program alone, it is made so large and put there; elsewhere that is asked for.
class FullScreen {
public:
    void Set(SDL_Window* window, bool on);
    [[nodiscard]] bool IsOn(SDL_Window* window) const;

private:
    bool m_isPlaced = false;  // without anybody who manages windows
    PictureArea m_before;     // where it stood then
};

}  // namespace kel
