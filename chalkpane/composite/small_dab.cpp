#include "chalkpane/composite/small_dab.h"

#include <bit>

#include "chalkpane/base/cpu_features.h"

namespace chalkpane {

bool SmallMask8::Take(const Image& mask) {
    rows = {};
    rect = mask.Bounds();
    if (!mask.IsMask() || mask.GetDepth() != Depth::Eight || rect.Width() > side || rect.Height() > side) return false;
    for (std::int32_t y = rect.y0; y <= rect.y1; ++y) {
        Row& row = rows[static_cast<std::size_t>(rect.y1 - y)];
        std::size_t at = 0;
        for (const std::uint32_t m : mask.Row8(y).first(static_cast<std::size_t>(rect.Width())))
            for (int channel = 0; channel < 4; ++channel) row[at++] = static_cast<std::uint16_t>(m + (m >> 7));
    }
    return true;
}

SmallDabTarget SmallDabTarget::Of(const Image& canvas, std::uint32_t pixel) {
    if (canvas.IsMask() || canvas.GetDepth() != Depth::Eight || !canvas.IsValid()) return {};
    return {reinterpret_cast<std::uint8_t*>(canvas.origin), canvas.rowBytes, canvas.Bounds(), pixel};
}

void SmallColourOver8Plain(const SmallDabTarget& target, const SmallMask8& mask, std::int32_t left, std::int32_t top,
                           std::int32_t opacity) {
    const auto source = std::bit_cast<std::array<std::uint8_t, 4>>(target.pixel);
    std::uint8_t* row = target.At(left, top);
    for (const SmallMask8::Row& weights : mask.rows) {
        for (std::size_t i = 0; i < weights.size(); ++i) {
            const std::int32_t w = weights[i] * opacity;
            row[i] = static_cast<std::uint8_t>((source[i % 4] * w + row[i] * (65536 - w)) >> 16);
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
