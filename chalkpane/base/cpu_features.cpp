#include "chalkpane/base/cpu_features.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace chalkpane {
namespace {

CpuFeatures FeaturesOfMachine() {
#if defined(__x86_64__)
    __builtin_cpu_init();  // statics of other files may have asked before the library of the compiler did
    if (__builtin_cpu_supports("avx2") == 0) return CpuFeatures::Plain;
    const bool hasAvx512 = __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
                           __builtin_cpu_supports("avx512dq") != 0 && __builtin_cpu_supports("avx512vl") != 0 &&
                           __builtin_cpu_supports("avx512vbmi") != 0 && __builtin_cpu_supports("avx512vbmi2") != 0 &&
                           __builtin_cpu_supports("avx512vnni") != 0;
    return hasAvx512 ? CpuFeatures::All : CpuFeatures::Avx2;
#else
    return CpuFeatures::Plain;
#endif
}

CpuFeatures FeaturesOfEnvironment() {
    const char* const wanted = std::getenv("CHALKPANE_CPU_FEATURES");
    if (wanted == nullptr) return CpuFeatures::All;
    const std::string_view name(wanted);
    return name == "plain" ? CpuFeatures::Plain : name == "avx2" ? CpuFeatures::Avx2 : CpuFeatures::All;
}

}  // namespace

std::atomic<CpuFeatures> detail::usedFeatures{std::min(FeaturesOfEnvironment(), FeaturesOfMachine())};

void UseCpuFeatures(CpuFeatures features) {
    detail::usedFeatures.store(std::min(features, FeaturesOfMachine()), std::memory_order_relaxed);
}

}  // namespace chalkpane
