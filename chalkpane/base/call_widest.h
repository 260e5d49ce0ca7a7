#pragma once

#include "chalkpane/base/cpu_features.h"

namespace chalkpane {

namespace detail {
// What `function` calls is compiled once more, for AVX2: the same operations on more pixels at once.
#if defined(__x86_64__)
template <typename Function>
[[gnu::target("avx2"), gnu::flatten]] void CallForAvx2(const Function& function) {
    function();
}
#else
template <typename Function>
void CallForAvx2(const Function& function);
#endif
}  // namespace detail

// Calls a loop that the compiler vectorises by itself in the widest form that runs here: for loops whose vector form
// is the plain one with more in a register. `function` takes nothing, gives nothing, and everything in it can be
// inlined.
template <typename Function>
void CallWidest(const Function& function) {
    if constexpr (builtWithAvx2)
        if (HasAvx2()) return detail::CallForAvx2(function);
    function();
}

}  // namespace chalkpane
