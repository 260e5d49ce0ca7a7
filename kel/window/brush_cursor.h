#pragma once

#include <memory>

struct SDL_Cursor;

namespace kel {

// The pointer over the picture: a ring as large as what the pen paints. The desktop moves it, so it costs no picture.
class BrushCursor {
public:
    BrushCursor();
    ~BrushCursor();
    BrushCursor(const BrushCursor&) = delete;
    BrushCursor& operator=(const BrushCursor&) = delete;
    BrushCursor(BrushCursor&&) = delete;
    BrushCursor& operator=(BrushCursor&&) = delete;

    // radius: window pixels; beyond what desktops show as a pointer, and for nothing, it is a cross
    void Show(double radius);
    // The panel has its own pointers.
    void Hide();

    static constexpr int largestRadius = 120;

private:
    struct FreeCursor {
        void operator()(SDL_Cursor* cursor) const;
    };
    std::unique_ptr<SDL_Cursor, FreeCursor> m_ring;
    std::unique_ptr<SDL_Cursor, FreeCursor> m_cross;
    int m_radius = 0;  // of m_ring
    bool m_isShown = false;
};

}  // namespace kel
