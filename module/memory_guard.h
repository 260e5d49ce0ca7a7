#pragma once

#include <cstdio>
#include <new>
#include <utility>

namespace chalkpane {

// Runs `action`. When memory runs out inside, says so on standard output: the one failure the module reports. The
// caller carries on without the resource. True: `action` ran to its end.
template <typename Action>
bool WithinMemory(Action&& action) noexcept {
    try {
        std::forward<Action>(action)();
        return true;
    } catch (const std::bad_alloc&) {
        std::fputs("Chalkpane Exception: No Memory left!\n", stdout);
        return false;
    }
}

}  // namespace chalkpane
