#pragma once

#include <cstdint>
#include <memory>

#include "chalkpane/filters/filter_class.h"

namespace chalkpane {

// "Oil": every pixel takes the mean of the most frequent tone of a square around it. Works in 8 bits; an image of 14
// bits is taken down to 8 first. Masks come back as they are.
class OilEffect final : public FilterClass<OilEffect, Filter> {
public:
    static constexpr FilterIdentity identity{"Oil Effect", "Oil", "Effects"};
    static constexpr auto Parameters() {
        using Self = OilEffect;
        return std::to_array<ParameterRow<Self>>({
            // code label        unique name     default range  field
            {0, "Radius", "Radius", {}, {0, 5}, &Self::m_radius},
            {1, "Levels", "Levels", 100, {2, 255}, &Self::m_levels},
            {2, "Use Intensity", "Use Intensity", true, {}, &Self::m_useIntensity},
        });
    }

    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;
    [[nodiscard]] std::int32_t PreferredDepth(std::int32_t /*depth*/) const override {
        return static_cast<std::int32_t>(Depth::Eight);
    }

private:
    std::int32_t m_radius = 1;    // pixels
    std::int32_t m_levels = 255;  // DIFFERS from the default's 100
    bool m_useIntensity = true;   // tones by brightness; false: each channel by itself
};

}  // namespace chalkpane
