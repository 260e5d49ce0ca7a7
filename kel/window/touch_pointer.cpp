#include "kel/window/touch_pointer.h"

#include <algorithm>
#include <cmath>

namespace kel {
namespace {

bool IsOfFinger(const SDL_Event& event) {
    return event.type == SDL_FINGERDOWN || event.type == SDL_FINGERMOTION || event.type == SDL_FINGERUP;
}

// Shares of the window; what is no number is its corner.
SDL_Point PixelAt(const SDL_TouchFingerEvent& touch, WindowSize window) {
    const auto along = [](float share, std::int32_t side) {
        const float inside = share >= 0 ? std::min(share, 1.0F) : 0.0F;
        return std::min(static_cast<int>(std::floor(inside * static_cast<float>(side))), side - 1);
    };
    return {along(touch.x, window.width), along(touch.y, window.height)};
}

SDL_Event Moved(const SDL_TouchFingerEvent& touch, SDL_Point from, SDL_Point to, bool isDown) {
    SDL_Event event{};
    event.type = SDL_MOUSEMOTION;
    event.motion.timestamp = touch.timestamp;
    event.motion.windowID = touch.windowID;
    event.motion.which = SDL_TOUCH_MOUSEID;
    event.motion.state = isDown ? SDL_BUTTON_LMASK : 0;
    event.motion.x = to.x;
    event.motion.y = to.y;
    event.motion.xrel = to.x - from.x;
    event.motion.yrel = to.y - from.y;
    return event;
}

SDL_Event Pressed(const SDL_TouchFingerEvent& touch, SDL_Point at, bool isDown) {
    SDL_Event event{};
    event.type = isDown ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
    event.button.timestamp = touch.timestamp;
    event.button.windowID = touch.windowID;
    event.button.which = SDL_TOUCH_MOUSEID;
    event.button.button = SDL_BUTTON_LEFT;
    event.button.state = isDown ? SDL_PRESSED : SDL_RELEASED;
    event.button.clicks = 1;
    event.button.x = at.x;
    event.button.y = at.y;
    return event;
}

}  // namespace

std::vector<SDL_Event> TouchPointer::Take(const SDL_Event& event, WindowSize window) {
    if (!IsOfFinger(event)) return {};
    const SDL_TouchFingerEvent& touch = event.tfinger;
    const Finger finger{touch.touchId, touch.fingerId};
    const bool begins = event.type == SDL_FINGERDOWN && !m_down;
    if (!begins && m_down != finger) return {};
    const SDL_Point from = m_at;
    m_at = PixelAt(touch, window);
    std::vector<SDL_Event> mouse{Moved(touch, begins ? m_at : from, m_at, !begins)};
    if (begins) {
        m_down = finger;
        mouse.push_back(Pressed(touch, m_at, true));
    } else if (event.type == SDL_FINGERUP) {
        m_down.reset();
        mouse.push_back(Pressed(touch, m_at, false));
    }
    return mouse;
}

}  // namespace kel
