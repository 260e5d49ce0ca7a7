#pragma once

#include <cstdint>
#include <memory>

#include "chalkpane/filters/filter_class.h"

namespace chalkpane {

// "Component Correct": a curve over one component of the colour. Rows run on the workers. Masks have
// no colour and are copied.
class ComponentCC final : public FilterClass<ComponentCC, Filter> {
public:
    static constexpr FilterIdentity identity{"ComponentCorrect", "Component Correct", "Color Correctors"};
    static constexpr auto Parameters() {
        using Self = ComponentCC;
        return std::to_array<ParameterRow<Self>>({
            {0, "Component", "Component", 0, {}, &Self::m_component},
            {1, "LUT Graph", "LUT Graph", {}, {}, &Self::m_graph},
        });
    }
    static std::span<const std::string_view> Choices(std::uint8_t code);

    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;

private:
    std::uint32_t m_component = 0;
    ShapePointList m_graph;
};

}  // namespace chalkpane
