#include "chalkpane/composite/small_dab_avx2.h"

#if defined(__x86_64__)

namespace chalkpane {

[[gnu::target("avx2")]] void SmallColourOver8Avx2(const SmallDabTarget& target, const SmallMask8& mask,
                                                  std::int32_t left, std::int32_t top, std::int32_t opacity) {
    SmallColourAvx2(target, opacity).Over(target.At(left, top), target.rowBytes, mask);
}

}  // namespace chalkpane

#endif
