#pragma once

#include <cstdint>
#include <memory>

#include "chalkpane/filters/filter_class.h"

namespace chalkpane {

// "Pixellate": squares of one colour each, the mean of what of the source lies in them, alpha too. The squares stand at
// multiples of their size in the plane, so that a region shows the same squares as the whole picture.
class PixellateEffect final : public FilterClass<PixellateEffect, Filter> {
public:
    static constexpr FilterIdentity identity{"Pixellate Effect", "Pixellate", "Effects"};
    static constexpr auto Parameters() {
        return std::to_array<ParameterRow<PixellateEffect>>({
            {0, "Size", "Filter Size", 1, {1, 10}, &PixellateEffect::m_size},
        });
    }

    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;
    [[nodiscard]] bool MovesPixels() const override { return true; }
    [[nodiscard]] bool IsActive() const override { return m_size > 1; }

private:
    std::int32_t m_size = 1;  // pixels
};

}  // namespace chalkpane
