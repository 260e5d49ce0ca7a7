#pragma once

#include <SDL.h>

#include <deque>
#include <optional>

namespace kel {

// The mouse as the panel sees it. The panel looks once a frame, and then at where the mouse has come to; here each
// press and release of the left button waits, with its own place, for a frame of its own, so that none of several is
// lost however fast they are, and however far away the mouse is by then.
class PanelMouse {
public:
    // Of events that are no mouse's nothing is taken.
    void Take(const SDL_Event& event);

    [[nodiscard]] bool HasWaiting() const { return !m_waiting.empty(); }

    struct Look {
        SDL_Point at{};  // window pixels
        bool isDown = false;
        friend bool operator==(const Look& left, const Look& right) {
            return left.at.x == right.at.x && left.at.y == right.at.y && left.isDown == right.isDown;
        }
    };
    // What the next frame sees. Nothing: the mouse as it is.
    [[nodiscard]] std::optional<Look> Next();

private:
    std::deque<Look> m_waiting;
    Look m_last;
    bool m_isFinger = false;  // which SDL's own mouse does not follow
};

}  // namespace kel
