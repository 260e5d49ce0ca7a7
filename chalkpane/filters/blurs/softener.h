#pragma once

#include <cstdint>
#include <memory>

#include "chalkpane/filters/filter_class.h"

namespace chalkpane {

// "Blur": a bell-shaped blur along columns and then rows, with the picture's edges fading out.
//
// An expanded result grows on all sides by the support radius; a region's left and right sides fade, because the second
// pass sees nothing beyond it.
class Softener final : public FilterClass<Softener, Filter> {
public:
    static constexpr FilterIdentity identity{"Softener", "Blur", "Blurs"};
    static constexpr auto Parameters() {
        return std::to_array<ParameterRow<Softener>>({
            // code label       unique name        default range    field
            {0, "Softness", "Filter Softness", {}, {0, 20}, &Softener::m_softness},
        });
    }

    Softener() = default;
    explicit Softener(double softness) : m_softness(softness) {}

    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;
    [[nodiscard]] bool MovesPixels() const override { return true; }
    [[nodiscard]] bool FiltersMask() const override { return true; }
    [[nodiscard]] bool IsActive() const override { return m_softness >= 1.0; }
    [[nodiscard]] Rect InputRegion(const Rect& rect, const Rect& region) const override;
    [[nodiscard]] Rect OutputRegion(const Rect& rect, const Rect& region) const override;

private:
    // Pixels on each side that enter a result.
    [[nodiscard]] std::int32_t SupportRadius() const;

    double m_softness = 0.0;  // pixels
    double m_scale = 1.0;     // of the picture against the one that the softness was chosen on
};

}  // namespace chalkpane
