#pragma once

#include <cstdint>

#include "filters/filter_class.h"
#include "filters/point_filter.h"

namespace chalkpane {

// "Remove Red-eye": where red stands out from green and blue it is brought down to their level.
class RedeyeFilter final : public FilterClass<RedeyeFilter, PointFilter> {
public:
    static constexpr FilterIdentity identity{"Remove Red-eye", "Remove Red-eye", "Color Correctors"};
    static constexpr auto Parameters() {
        return std::to_array<ParameterRow<RedeyeFilter>>({
            {0, "Sensitivity", "Sensitivity", 0.05, {0, 1}, &RedeyeFilter::m_sensitivity},
        });
    }

    void ProcessPixel(std::int32_t x, std::int32_t y, float& a, float& r, float& g, float& b) override;

private:
    // KEEP: against channels of 0 to 255, which makes the whole range a very small margin.
    float m_sensitivity = 0.0F;  // DIFFERS from the default's 0.05
};

}  // namespace chalkpane
