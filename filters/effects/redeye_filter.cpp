#include "filters/effects/redeye_filter.h"

namespace chalkpane {

void RedeyeFilter::ProcessPixel(std::int32_t /*x*/, std::int32_t /*y*/, float& a, float& r, float& g, float& b) {
    constexpr float redWeight = 0.5133333F;
    constexpr float blueWeight = 0.1933333F;
    if (a == 0.0F) return;
    const float red = r * redWeight;
    const float blue = b * blueWeight;
    if (g - m_sensitivity <= red && blue - m_sensitivity <= red) r = ((g + blue) * 0.5F) / redWeight;
}

}  // namespace chalkpane
