#pragma once

#include "kel/scene/frame_buffer.h"

struct SDL_Window;

namespace kel {

// Shows parts of a window's back buffer, which keeps its pixels, where the display can: on X through GLX. The window's
// context is current in every call.
class PartPresenter {
public:
    explicit PartPresenter(SDL_Window* window);

    [[nodiscard]] bool IsPossible() const { return m_copy != nullptr; }
    // The part lies within the window, and IsPossible.
    void Show(const FrameArea& part) const;

private:
    using Copy = void (*)(void* display, unsigned long drawable, int x, int y, int width, int height);

    void* m_display = nullptr;
    unsigned long m_drawable = 0;
    Copy m_copy = nullptr;  // null: it cannot be done here
};

}  // namespace kel
