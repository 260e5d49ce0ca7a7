#pragma once

#include <cstdint>
#include <memory>

#include "chalkpane/filters/filter_class.h"

namespace chalkpane {

// "Erode/Dilate": a black-and-white matte of the picture's luma, made thicker or thinner by a blur between two
// thresholds. The picture's colours do not survive. Works in 8 bits; an image of 14 bits is taken down to 8 first.
class DilateFilter final : public FilterClass<DilateFilter, Filter> {
public:
    static constexpr FilterIdentity identity{"Erode/Dilate", "Erode/Dilate", "Filters"};
    static constexpr auto Parameters() {
        using Self = DilateFilter;
        return std::to_array<ParameterRow<Self>>({
            {0, "Radius", "Radius", 1.0, {1, 40}, &Self::m_radius},
            {1, "Lower Threshold", "Lower Threshold", 127, {0, 255}, &Self::m_lowerThreshold},
            {2, "Upper Threshold", "Upper Threshold", 127, {0, 255}, &Self::m_upperThreshold},
            {3, "Softness", "Softness", 0, {0, 100}, &Self::m_softness},
        });
    }

    // With `region` and `expand` the result grows beyond the region: it is cut first and grows afterwards.
    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;
    [[nodiscard]] std::int32_t PreferredDepth(std::int32_t /*depth*/) const override {
        return static_cast<std::int32_t>(Depth::Eight);
    }
    [[nodiscard]] Rect InputRegion(const Rect& rect, const Rect& region) const override;
    [[nodiscard]] Rect OutputRegion(const Rect& rect, const Rect& region) const override;

private:
    [[nodiscard]] std::unique_ptr<Image> Matte(const Image& source, const Rect& work, bool fast, const Rect* region,
                                               bool expand) const;

    double m_radius = 1.0;  // pixels
    std::int32_t m_lowerThreshold = 127;
    std::int32_t m_upperThreshold = 127;
    std::int32_t m_softness = 0;  // levels to both sides of the middle that stay grey
};

}  // namespace chalkpane
