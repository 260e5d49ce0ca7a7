#pragma once

#include <cstdint>
#include <memory>

#include "chalkpane/filters/filter_class.h"

namespace chalkpane {

// "Super Soften": box filters over rows and then columns, which approximate a Gaussian the better the more passes there
// are. Its cost does not depend on the softness.
class SuperSoftener final : public FilterClass<SuperSoftener, Filter> {
public:
    static constexpr FilterIdentity identity{"SuperSoftener", "Super Soften", "Blurs"};
    static constexpr auto Parameters() {
        using Self = SuperSoftener;
        return std::to_array<ParameterRow<Self>>({
            // code label       unique name               default range     field
            {0, "Softness", "SuperSoftener Softness", 0.0, {0, 100}, &Self::m_softness, percent},
            {1, "Quality", "SuperSoftener Quality", 0, {}, &Self::m_passes},
        });
    }
    static std::span<const std::string_view> Choices(std::uint8_t code);

    SuperSoftener() = default;
    SuperSoftener(double softness, std::uint8_t passes) : m_softness(softness), m_passes(passes) {}

    // The quality's index plus 1 is the number of passes.
    void setParameter(ParameterValue* value) override;
    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;
    [[nodiscard]] bool MovesPixels() const override { return true; }
    [[nodiscard]] bool FiltersMask() const override { return true; }
    [[nodiscard]] bool IsActive() const override { return m_softness >= 1.0; }
    [[nodiscard]] Rect InputRegion(const Rect& rect, const Rect& region) const override;
    [[nodiscard]] Rect OutputRegion(const Rect& rect, const Rect& region) const override;

private:
    [[nodiscard]] std::int32_t SupportRadius() const;

    double m_softness = 0.0;    // pixels
    std::uint8_t m_passes = 3;  // DIFFERS from the default's 1: a fresh object blurs in three passes until told
};

}  // namespace chalkpane
