#pragma once

#include <cstdint>
#include <memory>

#include "chalkpane/filters/filter_class.h"

namespace chalkpane {

// "Median": every channel, alpha too, becomes the median of a square around it. Works in 8 bits; an image of 14 bits
// is taken down to 8 first.
class MedianFilter final : public FilterClass<MedianFilter, Filter> {
public:
    static constexpr FilterIdentity identity{"Median Filter", "Median", "Filters"};
    static constexpr auto Parameters() {
        return std::to_array<ParameterRow<MedianFilter>>({
            {0, "Radius", "Filter Size", 1, {1, 20}, &MedianFilter::m_radius},
        });
    }

    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;
    [[nodiscard]] bool MovesPixels() const override { return true; }
    [[nodiscard]] bool IsActive() const override { return m_radius > 0; }
    [[nodiscard]] std::int32_t PreferredDepth(std::int32_t /*depth*/) const override {
        return static_cast<std::int32_t>(Depth::Eight);
    }
    [[nodiscard]] Rect InputRegion(const Rect& rect, const Rect& region) const override;
    [[nodiscard]] Rect OutputRegion(const Rect& rect, const Rect& region) const override;

private:
    [[nodiscard]] std::int32_t SupportRadius() const;

    std::int32_t m_radius = 0;  // pixels. DIFFERS from the default's 1: a fresh object changes nothing until told
};

}  // namespace chalkpane
