#include "chalkpane/composite/src_over_row.h"

#include <array>
#include <bit>

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/composite/constant_mask.h"

namespace chalkpane {

void SrcOverRow8Plain(std::uint8_t* target, const std::uint8_t* source, const std::uint8_t* mask,
                      std::ptrdiff_t maskStep, std::ptrdiff_t count, std::int32_t opacity) {
    for (; count > 0; --count, target += 4, source += 4, mask += maskStep)
        if (*mask != 0) OverPixel8(target, source, *mask, opacity);
}

void SrcOverRow8(std::uint8_t* target, const std::uint8_t* source, const std::uint8_t* mask, std::ptrdiff_t maskStep,
                 std::ptrdiff_t count, std::int32_t opacity) {
    if constexpr (builtWithAvx512) {
        if (maskStep == 1 && HasAvx512())
            return SrcOverBlock8Avx512(
                {.target = target, .source = source, .mask = mask, .width = count, .height = 1, .opacity = opacity});
    }
    if constexpr (builtWithAvx2) {
        if (maskStep == 1 && HasAvx2()) return SrcOverRow8Avx2(target, source, mask, count, opacity);
        if (maskStep == 0 && HasAvx2())
            return RunWithConstantMask<SrcOverRow8Avx2>(target, source, *mask, count, opacity);
    }
    SrcOverRow8Plain(target, source, mask, maskStep, count, opacity);
}

void SrcOverBlock8(const PixelBlock8& block) {
    if constexpr (builtWithAvx512)
        if (HasAvx512()) return SrcOverBlock8Avx512(block);
    for (std::ptrdiff_t y = 0; y < block.height; ++y)
        SrcOverRow8(block.target + y * block.targetStep, block.source + y * block.sourceStep,
                    block.mask + y * block.maskStep, 1, block.width, block.opacity);
}

void ColourOverBlock8Plain(const ColourBlock8& block) {
    const auto pixel = std::bit_cast<std::array<std::uint8_t, 4>>(block.pixel);
    for (std::ptrdiff_t y = 0; y < block.height; ++y) {
        std::uint8_t* target = block.target + y * block.targetStep;
        const std::uint8_t* const mask = block.mask + y * block.maskStep;
        for (std::ptrdiff_t x = 0; x < block.width; ++x, target += 4)
            if (mask[x] != 0) OverPixel8(target, pixel.data(), mask[x], block.opacity);
    }
}

void ColourOverBlock8(const ColourBlock8& block) {
    // Of the narrowest blocks two rows fill a register better than one a wider one.
    if constexpr (builtWithAvx512)
        if (block.width > 4 && HasAvx512()) return ColourOverBlock8Avx512(block);
    if constexpr (builtWithAvx2)
        if (HasAvx2()) return ColourOverBlock8Avx2(block);
    ColourOverBlock8Plain(block);
}

}  // namespace chalkpane
