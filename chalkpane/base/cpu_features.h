#pragma once

namespace chalkpane {

// True when this machine runs AVX2. Asked once; afterwards it is a load and a branch.
#if defined(__x86_64__)
inline const bool machineHasAvx2 = __builtin_cpu_supports("avx2") != 0;
inline bool HasAvx2() { return machineHasAvx2; }
#else
constexpr bool HasAvx2() { return false; }
#endif

}  // namespace chalkpane
