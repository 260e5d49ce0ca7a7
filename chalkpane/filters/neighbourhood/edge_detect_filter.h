#pragma once

#include <cstdint>
#include <memory>

#include "chalkpane/filters/filter_class.h"

namespace chalkpane {

// "Edge Detect": every colour channel becomes the larger of its two Sobel slopes, brightened. Alpha stays.
class EdgeDetectFilter final : public FilterClass<EdgeDetectFilter, Filter> {
public:
    static constexpr FilterIdentity identity{"Edge Detect", "Edge Detect", "Filters"};
    static constexpr auto Parameters() {
        return std::to_array<ParameterRow<EdgeDetectFilter>>({
            {0, "Brightness", "Brightness", 5.0, {0, 10}, &EdgeDetectFilter::m_brightness, percent},
        });
    }

    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;
    [[nodiscard]] bool MovesPixels() const override { return true; }
    [[nodiscard]] Rect InputRegion(const Rect& rect, const Rect& region) const override;
    [[nodiscard]] Rect OutputRegion(const Rect& rect, const Rect& region) const override;

private:
    double m_brightness = 0.0;  // tenths of a slope. DIFFERS from the default's 5: a fresh object gives black
};

}  // namespace chalkpane
