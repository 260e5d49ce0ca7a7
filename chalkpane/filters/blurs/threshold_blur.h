#pragma once

#include <cstdint>
#include <memory>

#include "chalkpane/filters/filter_class.h"
#include "chalkpane/filters/work_area.h"

namespace chalkpane {

// "Smart Blur": has its parameters and its place in the menu, and no effect.
class ThresholdBlur final : public FilterClass<ThresholdBlur, Filter> {
public:
    static constexpr FilterIdentity identity{"Smart Blur", "Smart Blur", "Blurs"};
    static constexpr auto Parameters() {
        using Self = ThresholdBlur;
        return std::to_array<ParameterRow<Self>>({
            // code label        unique name  default range    field
            {0, "Softness", "Softness", 0, {0, 10}, &Self::m_softness},
            {1, "Threshold", "Threshold", 0.2, {0, 1}, &Self::m_threshold},
        });
    }

    // KEEP: nothing is stored into `result`; the caller gets back whatever it left there. Saved chains hold this filter
    // and must go on looking as they do.
    void Apply(const Image& /*source*/, std::unique_ptr<Image>& /*result*/, bool /*fast*/, const Rect* /*region*/,
               bool /*expand*/) override {}
    [[nodiscard]] bool MovesPixels() const override { return true; }
    [[nodiscard]] bool FiltersMask() const override { return true; }
    [[nodiscard]] bool IsActive() const override { return m_softness >= 1 && m_limit < 255; }
    [[nodiscard]] Rect InputRegion(const Rect& /*rect*/, const Rect& region) const override {
        return Grown(region, m_softness);
    }

private:
    std::int32_t m_softness = 0;  // pixels
    float m_threshold = 0.2F;     // of full scale
    std::int32_t m_limit = 0;     // a working field that nothing raises
};

}  // namespace chalkpane
