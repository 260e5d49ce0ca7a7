#include "chalkpane/filters/colour/hue_cc.h"

#include <algorithm>
#include <cmath>

namespace chalkpane {

bool HueCC::HasNoRanges() const {
    return std::fabs(m_shadow) < 1e-05F && std::fabs(m_midtone) < 1e-05F && std::fabs(m_highlight) < 1e-05F;
}

bool HueCC::IsIdentity(const Image& /*source*/) const { return HasNoRanges() && std::fabs(m_hue) < 1e-05F; }

void HueCC::BeginRun(const Image& source) {
    if (HasNoRanges()) return;
    const std::int32_t size = source.GetDepth() == Depth::Eight ? 256 : 16384;
    const std::int32_t middle = size / 2;
    const auto n = static_cast<float>(size);
    const auto peak = [](float part) { return std::max(0.0F, part / 360.0F); };
    m_turns.clear();
    m_turns.reserve(static_cast<std::size_t>(size));
    for (std::int32_t i = 0; i < size; ++i) {
        const auto twice = static_cast<float>(2 * i);
        const auto fromMiddle = static_cast<float>(2 * (i - middle));
        const float shadow = peak(1.0F - twice / n);
        const float midtone = peak(1.0F - std::fabs(fromMiddle) / n);
        const float highlight = peak(fromMiddle / n);
        m_turns.push_back(shadow * m_shadow + midtone * m_midtone + highlight * m_highlight);
    }
}

}  // namespace chalkpane
