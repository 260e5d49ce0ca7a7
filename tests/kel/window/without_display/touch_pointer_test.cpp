#include "kel/window/touch_pointer.h"

#include <doctest/doctest.h>

#include <limits>

namespace kel {
namespace {

constexpr WindowSize window{400, 200};

SDL_Event Touch(Uint32 type, SDL_FingerID finger, float x, float y) {
    SDL_Event event{};
    event.type = type;
    event.tfinger.touchId = 3;
    event.tfinger.fingerId = finger;
    event.tfinger.windowID = 5;
    event.tfinger.x = x;
    event.tfinger.y = y;
    return event;
}

void CheckMotion(const SDL_Event& event, int x, int y, Uint32 state) {
    CHECK_EQ(event.type, SDL_MOUSEMOTION);
    CHECK_EQ(event.motion.x, x);
    CHECK_EQ(event.motion.y, y);
    CHECK_EQ(event.motion.state, state);
    CHECK_EQ(event.motion.windowID, 5);
}

void CheckButton(const SDL_Event& event, Uint32 type, int x, int y) {
    CHECK_EQ(event.type, type);
    CHECK_EQ(event.button.button, SDL_BUTTON_LEFT);
    CHECK_EQ(event.button.x, x);
    CHECK_EQ(event.button.y, y);
}

}  // namespace

TEST_CASE("A finger that goes down, along and up is a mouse that comes, presses, drags and lets go") {
    TouchPointer touch;
    const auto down = touch.Take(Touch(SDL_FINGERDOWN, 1, 0.25F, 0.5F), window);
    REQUIRE_EQ(down.size(), 2);
    CheckMotion(down[0], 100, 100, 0);
    CheckButton(down[1], SDL_MOUSEBUTTONDOWN, 100, 100);
    const auto along = touch.Take(Touch(SDL_FINGERMOTION, 1, 0.5F, 0.25F), window);
    REQUIRE_EQ(along.size(), 1);
    CheckMotion(along[0], 200, 50, SDL_BUTTON_LMASK);
    CHECK_EQ(along[0].motion.xrel, 100);
    CHECK_EQ(along[0].motion.yrel, -50);
    const auto up = touch.Take(Touch(SDL_FINGERUP, 1, 0.75F, 0.25F), window);
    REQUIRE_EQ(up.size(), 2);
    CheckMotion(up[0], 300, 50, SDL_BUTTON_LMASK);
    CheckButton(up[1], SDL_MOUSEBUTTONUP, 300, 50);
}

TEST_CASE("Other fingers are nothing while one is down, and the next one after it is the pointer") {
    TouchPointer touch;
    (void)touch.Take(Touch(SDL_FINGERDOWN, 1, 0.1F, 0.1F), window);
    CHECK(touch.Take(Touch(SDL_FINGERDOWN, 2, 0.9F, 0.9F), window).empty());
    CHECK(touch.Take(Touch(SDL_FINGERMOTION, 2, 0.8F, 0.9F), window).empty());
    CHECK(touch.Take(Touch(SDL_FINGERUP, 2, 0.8F, 0.9F), window).empty());
    CHECK_EQ(touch.Take(Touch(SDL_FINGERUP, 1, 0.1F, 0.1F), window).size(), 2);
    CHECK(touch.Take(Touch(SDL_FINGERMOTION, 1, 0.2F, 0.1F), window).empty());
    CHECK_EQ(touch.Take(Touch(SDL_FINGERDOWN, 2, 0.9F, 0.9F), window).size(), 2);
}

TEST_CASE("A finger beyond the window's edge, or nowhere, is at its edge") {
    TouchPointer touch;
    const auto down = touch.Take(Touch(SDL_FINGERDOWN, 1, 1.0F, -0.5F), window);
    REQUIRE_EQ(down.size(), 2);
    CheckButton(down[1], SDL_MOUSEBUTTONDOWN, 399, 0);
    const auto along = touch.Take(Touch(SDL_FINGERMOTION, 1, std::numeric_limits<float>::quiet_NaN(), 2.0F), window);
    REQUIRE_EQ(along.size(), 1);
    CheckMotion(along[0], 0, 199, SDL_BUTTON_LMASK);
}

TEST_CASE("What is not of a finger is left to others") {
    TouchPointer touch;
    SDL_Event event{};
    event.type = SDL_MOUSEMOTION;
    CHECK(touch.Take(event, window).empty());
}

}  // namespace kel
