#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>

#include "chalkpane/filters/distort/distort_filter.h"
#include "chalkpane/filters/filter_class.h"
#include "chalkpane/filters/noise/noise_lattice.h"

namespace chalkpane {

// "Marble": moves pixels in rings that follow the contour lines of noise. It always runs: no setting is an identity.
class MarbleEffect final : public FilterClass<MarbleEffect, DistortFilter> {
public:
    static constexpr FilterIdentity identity{"Marble Effect", "Marble", "Distort"};
    static constexpr auto Parameters() {
        using Self = MarbleEffect;
        return std::to_array<ParameterRow<Self>>({
            // code label     unique name   default range  field
            {0, "Scale", "Scale", 0.1, {0, 1}, &Self::m_scale},
            {1, "Distance", "Distance", 0.1, {0, 1}, &Self::m_distance},
            {2, "Turbulence", "Turbulence", 0.1, {0, 1}, &Self::m_turbulence},
            {3, "Edges", "Edges", 0, {}, &Self::m_edgeMode, {ParameterType::enumeration}},
        });
    }
    static std::span<const std::string_view> Choices(std::uint8_t code);

    void setParameter(ParameterValue* value) override;
    // Answers for the stored edge mode 4 too.
    [[nodiscard]] std::string_view EnumLabel(const ParameterDef& definition, std::int32_t index) const override;
    void MapPoint(std::int32_t x, std::int32_t y, float& sourceX, float& sourceY) const override;
    void MapRow(std::int32_t x, std::int32_t y, std::span<float> sourceX, std::span<float> sourceY) const override;
    // The first run of the process builds the lattice.
    void Prepare() override;

private:
    // The index into the deltas for a noise.
    [[nodiscard]] static std::size_t RingOf(float noise);

    float m_scale = 0.1F;       // 1.0: a lattice of 100 pixels
    float m_distance = 0.1F;    // 1.0: pixels move by 30
    float m_turbulence = 0.1F;  // 1.0: 60 turns across the noise's range

    std::array<float, 256> m_deltaX{};  // pixels, by noise
    std::array<float, 256> m_deltaY{};
    std::shared_ptr<const NoiseLattice> m_lattice = NoiseLattice::Shared();  // of the run under way
};

}  // namespace chalkpane
