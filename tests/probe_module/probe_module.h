#pragma once

#include <cstdint>
#include <functional>

// What a test lets the probe module do in its callbacks; an empty function does nothing and answers 0, or true.
struct ProbeHooks {
    std::function<void()> registration;  // in PLUGIN_INIT_EX
    std::int32_t initAnswer = 0;
    std::function<void(void* block)> construct;
    std::function<void()> cleanup;
    std::function<void()> guiStatus;
    std::function<void(std::int32_t parameter)> changed;
    std::function<void(std::int32_t action)> action;
    std::function<void()> perField;
    std::function<void(bool pressed, std::int32_t x, std::int32_t y)> mouse;
    std::function<void()> keyboard;
    std::function<void()> preRender;
    std::function<void()> postRender;
};

// Exported by the module beside its entry points: hooks to use from now on, borrowed; null for none.
using ProbeSetHooks = void (*)(ProbeHooks* hooks);
