#include "kel/window/panel_mouse.h"

namespace kel {

void PanelMouse::Take(const SDL_Event& event) {
    if (event.type == SDL_MOUSEMOTION) {
        m_last.at = {event.motion.x, event.motion.y};
        m_isFinger = event.motion.which == SDL_TOUCH_MOUSEID;
        return;
    }
    const bool isButton = event.type == SDL_MOUSEBUTTONDOWN || event.type == SDL_MOUSEBUTTONUP;
    if (!isButton || event.button.button != SDL_BUTTON_LEFT) return;
    m_last = {{event.button.x, event.button.y}, event.type == SDL_MOUSEBUTTONDOWN};
    m_isFinger = event.button.which == SDL_TOUCH_MOUSEID;
    m_waiting.push_back(m_last);
}

std::optional<PanelMouse::Look> PanelMouse::Next() {
    if (m_waiting.empty()) return m_isFinger && m_last.isDown ? std::optional(m_last) : std::nullopt;
    const Look next = m_waiting.front();
    m_waiting.pop_front();
    return next;
}

}  // namespace kel
