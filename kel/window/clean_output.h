#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "kel/scene/host.h"

union SDL_Event;

namespace kel {

// A second window with the picture alone, for a beamer or a mixer: no panel, no pointer, no help. It has the OpenGL
// context of the first one, which is current in every call, and is so again afterwards.
class CleanOutput {
public:
    // display  counted from 1: fills that one; nothing: fills the second one where there is one, and is a window
    //          otherwise
    // Throws Error when there is no such display, or no window can be opened.
    CleanOutput(const std::string& title, WindowSize scene, std::optional<int> display);
    ~CleanOutput();
    CleanOutput(const CleanOutput&) = delete;
    CleanOutput& operator=(const CleanOutput&) = delete;
    CleanOutput(CleanOutput&&) = delete;
    CleanOutput& operator=(CleanOutput&&) = delete;

    // changed: of the scene's picture since the last call, in its pixels
    void Show(const Host& host, const FrameArea& changed);
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
