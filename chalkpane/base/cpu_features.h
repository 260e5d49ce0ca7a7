#pragma once

#include <atomic>
#include <cstdint>

namespace chalkpane {

// The one gate to code for processors beyond the baseline. Whatever has such a form asks here, once per row or per
// operation; the plain form beside it gives the same bytes.
//
// The environment variable CHALKPANE_CPU_FEATURES set to "plain" keeps to the plain forms from the start, to compare
// and to search for faults, and set to "avx2" to these and those for AVX2; so does `UseCpuFeatures` at any time when
// nothing is running.

// Each has those before it.
enum class CpuFeatures : std::uint8_t { Plain, Avx2, All };

// True where forms for AVX2, and for AVX-512, are part of the build: their files are empty elsewhere, and calls of them
// stand behind `if constexpr`.
#if defined(__x86_64__)
inline constexpr bool builtWithAvx2 = true;
#else
inline constexpr bool builtWithAvx2 = false;
#endif
inline constexpr bool builtWithAvx512 = builtWithAvx2;

namespace detail {
// Set while the program's statics are made; before that everything is plain. No more than the machine has.
extern std::atomic<CpuFeatures> usedFeatures;
}  // namespace detail

[[nodiscard]] inline CpuFeatures UsedCpuFeatures() { return detail::usedFeatures.load(std::memory_order_relaxed); }

// True when this machine runs AVX2 and nobody has asked for the plain forms: a load and a branch.
[[nodiscard]] inline bool HasAvx2() {
    if constexpr (builtWithAvx2) return UsedCpuFeatures() >= CpuFeatures::Avx2;
    return false;
}

// The same of AVX-512 with all that processors have had of it since they stopped lowering their clock for it: F, BW,
// DQ, VL, VBMI and VBMI2.
[[nodiscard]] inline bool HasAvx512() {
    if constexpr (builtWithAvx512) return UsedCpuFeatures() == CpuFeatures::All;
    return false;
}

// Those of them that the machine has, whatever the environment says.
void UseCpuFeatures(CpuFeatures features);

}  // namespace chalkpane
