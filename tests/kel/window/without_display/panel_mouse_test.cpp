#include "kel/window/panel_mouse.h"

#include <doctest/doctest.h>

#include <cstdint>

namespace kel {
namespace {

SDL_Event MouseAt(std::int32_t x, std::int32_t y, Uint32 device = 0) {
    SDL_Event event{};
    event.type = SDL_MOUSEMOTION;
    event.motion.which = device;
    event.motion.x = x;
    event.motion.y = y;
    return event;
}

SDL_Event ButtonAt(Uint32 type, std::int32_t x, std::int32_t y, Uint32 device = 0, Uint8 button = SDL_BUTTON_LEFT) {
    SDL_Event event{};
    event.type = type;
    event.button.which = device;
    event.button.button = button;
    event.button.x = x;
    event.button.y = y;
    return event;
}

using PanelLook = PanelMouse::Look;

}  // namespace

TEST_CASE("Each press and release is seen in a frame of its own, where it was") {
    PanelMouse mouse;
    CHECK_FALSE(mouse.Next());
    mouse.Take(MouseAt(10, 20));
    CHECK_FALSE(mouse.HasWaiting());
    CHECK_FALSE(mouse.Next());  // the mouse as it is
    for (const std::int32_t x : {10, 300}) {
        mouse.Take(ButtonAt(SDL_MOUSEBUTTONDOWN, x, 20));
        mouse.Take(ButtonAt(SDL_MOUSEBUTTONUP, x + 1, 21));
        mouse.Take(MouseAt(500, 500));
    }
    for (const std::int32_t x : {10, 300}) {
        CHECK(mouse.HasWaiting());
        CHECK(mouse.Next() == PanelLook{{x, 20}, true});
        CHECK(mouse.Next() == PanelLook{{x + 1, 21}, false});
    }
    CHECK_FALSE(mouse.HasWaiting());
    CHECK_FALSE(mouse.Next());
}

TEST_CASE("Other buttons wait for no frame") {
    PanelMouse mouse;
    mouse.Take(ButtonAt(SDL_MOUSEBUTTONDOWN, 10, 20, 0, SDL_BUTTON_MIDDLE));
    CHECK_FALSE(mouse.HasWaiting());
}

TEST_CASE("A finger that is down is followed to where it goes, since no mouse goes with it") {
    PanelMouse mouse;
    mouse.Take(ButtonAt(SDL_MOUSEBUTTONDOWN, 10, 20, SDL_TOUCH_MOUSEID));
    CHECK(mouse.Next() == PanelLook{{10, 20}, true});
    mouse.Take(MouseAt(30, 40, SDL_TOUCH_MOUSEID));
    CHECK(mouse.Next() == PanelLook{{30, 40}, true});
    CHECK(mouse.Next() == PanelLook{{30, 40}, true});
    mouse.Take(ButtonAt(SDL_MOUSEBUTTONUP, 30, 40, SDL_TOUCH_MOUSEID));
    CHECK(mouse.Next() == PanelLook{{30, 40}, false});
    CHECK_FALSE(mouse.Next());
}

}  // namespace kel
