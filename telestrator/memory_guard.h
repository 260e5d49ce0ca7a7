#pragma once

#include <cstdint>
#include <new>
#include <utility>

namespace chalkpane {

// Where memory runs out, the telestrator carries on without the resource and counts the failure here; whoever drives it
// tells the operator.
class MemoryGuard {
public:
    // True: `action` ran to its end. False: memory ran out inside.
    template <typename Action>
    bool Run(Action&& action) noexcept {
        try {
            std::forward<Action>(action)();
            return true;
        } catch (const std::bad_alloc&) {
            ++failures_;
            return false;
        }
    }

    // The failures since the last call of this.
    [[nodiscard]] std::uint32_t TakeFailures() noexcept { return std::exchange(failures_, 0U); }

private:
    std::uint32_t failures_ = 0;
};

}  // namespace chalkpane
