#include "chalkpane/composite/small_dab.h"

#include <bit>

#include "chalkpane/base/cpu_features.h"

namespace chalkpane {

bool SmallMask8::Take(const Image& mask) {
    rows = {};
    rect = mask.Bounds();
    if (!mask.IsMask() || mask.GetDepth() != Depth::Eight || rect.Width() > side || rect.Height() > side) return false;
    for (std::int32_t y = rect.y0; y <= rect.y1; ++y) {
        std::size_t at = lead;
        for (const std::uint32_t m : mask.Row8(y).first(static_cast<std::size_t>(rect.Width())))
            rows[static_cast<std::size_t>(rect.y1 - y)][at++] = (m + (m >> 7)) * 0x10001U;
    }
    return true;
}

SmallDabTarget SmallDabTarget::Of(const Image& canvas, std::uint32_t pixel) {
    constexpr std::uintptr_t registerBytes = 16;
    const auto first = reinterpret_cast<std::uintptr_t>(canvas.origin);
    const auto rowBytes = static_cast<std::uintptr_t>(canvas.rowBytes);
    if (canvas.IsMask() || canvas.GetDepth() != Depth::Eight || !canvas.IsValid()) return {};
    if (first % 4 != 0 || rowBytes % registerBytes != 0) return {};
    return {reinterpret_cast<std::uint8_t*>(canvas.origin), canvas.rowBytes, canvas.Bounds(), pixel};
}

void SmallColourOver8Plain(const SmallDabTarget& target, const SmallMask8& mask, std::int32_t left, std::int32_t top,
                           std::int32_t opacity) {
    const auto source = std::bit_cast<std::array<std::uint8_t, 4>>(target.pixel);
    std::uint8_t* row = target.At(left, top);
    for (const SmallMask8::Row& weights : mask.rows) {
        for (std::size_t x = 0; x < SmallMask8::side; ++x) {
            const std::int32_t w = static_cast<std::int32_t>(weights[SmallMask8::lead + x] & 0xffffU) * opacity;
            if (w == 0) continue;
            std::uint8_t* const d = row + 4 * x;
            for (std::size_t c = 0; c < 4; ++c)
                d[c] = static_cast<std::uint8_t>((source[c] * w + d[c] * (65536 - w)) >> 16);
        }
        row += target.rowBytes;
    }
}

void SmallColourOver8(const SmallDabTarget& target, const SmallMask8& mask, std::int32_t left, std::int32_t top,
                      std::int32_t opacity) {
    if constexpr (builtWithAvx2)
        if (HasAvx2()) return SmallColourOver8Avx2(target, mask, left, top, opacity);
    SmallColourOver8Plain(target, mask, left, top, opacity);
}

}  // namespace chalkpane
