#pragma once

#include <cstdint>
#include <memory>

#include "chalkpane/filters/filter_class.h"

namespace chalkpane {

// "Emboss": takes the brightness of the picture for a height and lights it from a direction; the shade tints one
// colour, the picture, or a mix of both. Masks come back as they are.
class EmbossEffect final : public FilterClass<EmbossEffect, Filter> {
public:
    static constexpr FilterIdentity identity{"Emboss Effect", "Emboss", "Effects"};
    static constexpr auto Parameters() {
        using Self = EmbossEffect;
        return std::to_array<ParameterRow<Self>>({
            // code label           unique name        default range     field
            {0, "Light Direction", "Light Direction", 90.0, {0, 360}, &Self::m_direction, angle0To360},
            {1, "Light Elevation", "Light Elevation", 30.0, {0, 90}, &Self::m_elevation},
            {2, "Bump Height", "Bump Height", 0.5, {0, 1}, &Self::m_bumpHeight},
            {3, "Color", "Colour", {}, {}, &Self::m_colour},
            {4, "Mix With Image", "Mix With Image", 0.0, {0, 1}, &Self::m_mix},
        });
    }

    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;

private:
    float m_direction = 90.0F;  // degrees
    float m_elevation = 30.0F;  // degrees
    float m_bumpHeight = 0.5F;
    Colour m_colour;
    float m_mix = 0.0F;
};

}  // namespace chalkpane
