#pragma once

#include <atomic>

namespace chalkpane {

// The one gate to code for processors beyond the baseline. Whatever has such a form asks here, once per row or per
// operation; the plain form beside it gives the same bytes.
//
// The environment variable CHALKPANE_CPU_FEATURES set to "plain" keeps to the plain forms from the start, to compare
// and to search for faults; so does `UseCpuFeatures` at any time when nothing is running.

enum class CpuFeatures { Plain, All };

// True where forms for AVX2 are part of the build: their files are empty elsewhere, and calls of them stand behind
// `if constexpr`.
#if defined(__x86_64__)
inline constexpr bool builtWithAvx2 = true;
#else
inline constexpr bool builtWithAvx2 = false;
#endif

namespace detail {
// Set while the program's statics are made; before that everything is plain.
extern std::atomic<bool> usesAvx2;
}  // namespace detail

// True when this machine runs AVX2 and nobody has asked for the plain forms: a load and a branch.
[[nodiscard]] inline bool HasAvx2() {
    if constexpr (builtWithAvx2) return detail::usesAvx2.load(std::memory_order_relaxed);
    return false;
}

// All: whatever the machine has, whatever the environment says.
void UseCpuFeatures(CpuFeatures features);

}  // namespace chalkpane
