#include "chalkpane/base/cpu_features.h"

#include <cstdlib>
#include <string_view>

namespace chalkpane {
namespace {

bool MachineHasAvx2() {
#if defined(__x86_64__)
    __builtin_cpu_init();  // statics of other files may have asked before the library of the compiler did
    return __builtin_cpu_supports("avx2") != 0;
#else
    return false;
#endif
}

CpuFeatures FeaturesOfEnvironment() {
    const char* const wanted = std::getenv("CHALKPANE_CPU_FEATURES");
    return wanted != nullptr && std::string_view(wanted) == "plain" ? CpuFeatures::Plain : CpuFeatures::All;
}

}  // namespace

std::atomic<bool> detail::usesAvx2{FeaturesOfEnvironment() == CpuFeatures::All && MachineHasAvx2()};

void UseCpuFeatures(CpuFeatures features) {
    detail::usesAvx2.store(features == CpuFeatures::All && MachineHasAvx2(), std::memory_order_relaxed);
}

}  // namespace chalkpane
