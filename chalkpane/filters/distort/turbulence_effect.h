#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "chalkpane/filters/distort/distort_filter.h"
#include "chalkpane/filters/filter_class.h"
#include "chalkpane/filters/noise/noise_lattice.h"

namespace chalkpane {

// "Turbulence": stirs the picture by noise of three octaves.
class TurbulenceEffect final : public FilterClass<TurbulenceEffect, DistortFilter> {
public:
    static constexpr FilterIdentity identity{"Turbulence Effect", "Turbulence", "Distort"};
    static constexpr auto Parameters() {
        using Self = TurbulenceEffect;
        return std::to_array<ParameterRow<Self>>({
            // code label       unique name     default range  field
            {0, "Amount", "Amount", 0.0, {0, 10}, &Self::m_amount},
            {1, "Lattice Size", "Lattice Size", 4, {1, 10}, &Self::m_latticeSize},
            {2, "Edges", "Edges", 0, {}, &Self::m_edgeMode, {ParameterType::enumeration}},
        });
    }
    static std::span<const std::string_view> Choices(std::uint8_t code);

    void setParameter(ParameterValue* value) override;
    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;
    [[nodiscard]] bool IsActive() const override { return m_amount >= 0.1F; }
    [[nodiscard]] Rect OutputRegion(const Rect& rect, const Rect& region) const override;
    void MapRect(Rect& out, const Rect& rect, bool expand) const override;
    void MapPoint(std::int32_t x, std::int32_t y, float& sourceX, float& sourceY) const override;
    void MapRow(std::int32_t x, std::int32_t y, std::span<float> sourceX, std::span<float> sourceY) const override;
    // The first run of the process builds the lattice.
    void Prepare() override;

private:
    [[nodiscard]] std::int32_t SupportRadius() const;

    float m_amount = 0.0F;           // pixels; noise of 1 moves by twice as much
    std::int32_t m_latticeSize = 4;  // pixels from one lattice point to the next

    std::shared_ptr<const NoiseLattice> m_lattice = NoiseLattice::Shared();  // of the run under way
};

}  // namespace chalkpane
