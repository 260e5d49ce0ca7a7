#pragma once

#include <SDL.h>

#include <optional>
#include <vector>

#include "kel/scene/host.h"

namespace kel {

// Makes of a finger what a mouse does, for panel and picture alike. The first finger down is the pointer until it is
// up; others meanwhile are nothing, so that a resting hand does not end a stroke.
class TouchPointer {
public:
    // The mouse's events in its place, in their order, with coordinates in the window's pixels. Empty: it is none of a
    // finger, or of another one.
    [[nodiscard]] std::vector<SDL_Event> Take(const SDL_Event& event, WindowSize window);

private:
    struct Finger {
        SDL_TouchID device;
        SDL_FingerID finger;
        bool operator==(const Finger&) const = default;
    };
    std::optional<Finger> m_down;
    SDL_Point m_at{};
};

}  // namespace kel
