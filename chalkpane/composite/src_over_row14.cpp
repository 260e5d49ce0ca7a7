#include "chalkpane/composite/src_over_row14.h"

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/composite/constant_mask.h"
#include "chalkpane/image/pixel_format.h"

namespace chalkpane {

void SrcOverRow14Plain(std::uint16_t* target, const std::uint16_t* source, const std::uint16_t* mask,
                       std::ptrdiff_t maskStep, std::ptrdiff_t count, std::int32_t opacity) {
    if (opacity == 0) return;
    for (; count > 0; --count, target += 4, source += 4, mask += maskStep)
        if (*mask != 0) OverPixel14(target, source, *mask, opacity);
}

void SrcOverRow14(std::uint16_t* target, const std::uint16_t* source, const std::uint16_t* mask,
                  std::ptrdiff_t maskStep, std::ptrdiff_t count, std::int32_t opacity) {
    if constexpr (builtWithAvx2) {
        if (maskStep == 1 && HasAvx2()) return SrcOverRow14Avx2(target, source, mask, count, opacity);
        if (maskStep == 0 && HasAvx2())
            return RunWithConstantMask<SrcOverRow14Avx2>(target, source, *mask, count, opacity);
    }
    SrcOverRow14Plain(target, source, mask, maskStep, count, opacity);
}

}  // namespace chalkpane
