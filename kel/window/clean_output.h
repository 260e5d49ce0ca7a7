#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "kel/scene/host.h"

union SDL_Event;

namespace kel {

// Where such a window is, displays being counted from 1.
struct CleanPlace {
    std::string title;
    std::string option;          // of the command line, for what is to be said of it
    std::optional<int> display;  // fills that one; nothing: the usual one
    int usual = 2;               // fills it where it is there, and is a window otherwise
};

// Another window with a picture alone, for a beamer or a mixer: no panel, no pointer, no help. It has the OpenGL
// context of the first one, which is current in every call, and is so again afterwards.
class CleanOutput {
public:
    // Shows the picture in an area of the current window, as far as it lies in a part of it.
    using Draw = std::function<void(const FrameArea& area, const FrameArea& part)>;

    // Throws Error when there is no such display, or no window can be opened.
    CleanOutput(const CleanPlace& place, WindowSize scene);
    ~CleanOutput();
    CleanOutput(const CleanOutput&) = delete;
    CleanOutput& operator=(const CleanOutput&) = delete;
    CleanOutput(CleanOutput&&) = delete;
    CleanOutput& operator=(CleanOutput&&) = delete;

    // changed: of the scene's picture since the last call, in its pixels
    void Show(WindowSize scene, const FrameArea& changed, const Draw& draw);
    // All is shown by the next call.
    void ShowAnew();

    // True: the event is of this window, and none of the first one's. What a pointer does that was pressed in the first
    // one is that one's wherever it goes, also when it is told of this window: a held pointer is told of the window
    // that has the keys. Such an event is made one of the first window.
    [[nodiscard]] bool TakeEvent(SDL_Event& event);
    [[nodiscard]] bool IsClosed() const;

private:
    void HandOver(std::uint32_t& windowId, std::int32_t& x, std::int32_t& y) const;

    struct Screen;
    std::unique_ptr<Screen> m_screen;
};

}  // namespace kel
