#pragma once

#include <array>
#include <memory>
#include <optional>

#include "kel/workspace/brush_look.h"

struct SDL_Cursor;

namespace kel {

// The pointer over the picture: a ring that is as large as what the pen paints there, and leans as the canvas does. The
// desktop moves it, so it costs no picture.
class BrushCursor {
public:
    BrushCursor();
    ~BrushCursor();
    BrushCursor(const BrushCursor&) = delete;
    BrushCursor& operator=(const BrushCursor&) = delete;
    BrushCursor(BrushCursor&&) = delete;
    BrushCursor& operator=(BrushCursor&&) = delete;

    // dab: in window pixels; for one beyond what desktops show as a pointer, and for none, it is a cross
    void Show(const std::optional<SeenDab>& dab);
    // The panel has its own pointers.
    void Hide();

    static constexpr double largestRadius = 120;

private:
    struct FreeCursor {
        void operator()(SDL_Cursor* cursor) const;
    };
    std::unique_ptr<SDL_Cursor, FreeCursor> m_ring;
    std::unique_ptr<SDL_Cursor, FreeCursor> m_cross;
    std::array<int, 4> m_axes{};  // of m_ring, in pixels; of no length: there is none
    bool m_isShown = false;
};

}  // namespace kel
