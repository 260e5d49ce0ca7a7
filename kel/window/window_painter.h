#pragma once

#include <vector>

#include "kel/scene/host.h"
#include "kel/window/ink_tail.h"
#include "kel/window/sdl_window.h"
#include "kel/workspace/picture_area.h"

namespace kel {

// What stands in the window: the scene's picture, the margin around it, and the panel's pages over both. Any part of it
// is made of these three alone, so parts that are drawn anew one by one give the window that is drawn anew as a whole.
//
// Where the display cannot show parts, every call shows all of it.
class WindowPainter {
public:
    explicit WindowPainter(SdlWindow& window) : m_window(window) {}

    // Where the picture stands; all is shown anew by the next call when that is elsewhere than before.
    void Place(const PictureArea& picture);
    [[nodiscard]] const PictureArea& Picture() const { return m_picture; }

    // What is drawn over the picture, and never into it; the next ShowPicture shows what becomes of it.
    [[nodiscard]] InkTail& Tail() { return m_tail; }

    // All is shown by the next call.
    void ShowAnew() { m_isStale = true; }

    // changed: of the scene's picture, in its pixels
    void ShowPicture(const Host& host, const FrameArea& changed);
    // The pages of the panel that look otherwise than when they were shown last.
    void ShowPanel(const Host& host);

private:
    void ShowAll(const Host& host);
    [[nodiscard]] FrameArea Whole() const;
    [[nodiscard]] FrameArea PictureInWindow() const;
    void Paint(const Host& host, const FrameArea& part);
    void PaintUnderPages(const Host& host, const FrameArea& part);
    void Show(const Host& host, const FrameArea& part);
    bool PutsPicture(const Host& host, const FrameArea& part);
    bool ShowsAllInstead(const Host& host);

    SdlWindow& m_window;
    PictureArea m_picture;
    InkTail m_tail;
    FrameArea m_tailShown;           // what of the window it covers
    std::vector<PanelPage> m_pages;  // as shown last
    WindowSize m_swapped;            // the window's size when its buffers were exchanged last
    bool m_isStale = true;           // all is to be shown anew
};

// The part of the window that shows a part of the scene, with a margin for what is taken from between the pixels.
//   picture  where the picture stands, in the window's pixels from its lower left corner
[[nodiscard]] FrameArea ShownPart(const FrameArea& changed, WindowSize scene, const FrameArea& picture);

}  // namespace kel
