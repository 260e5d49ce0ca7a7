#pragma once

#include <cstdint>
#include <memory>

#include "chalkpane/filters/filter_class.h"

namespace chalkpane {

// "Stained Glass": hexagonal cells, moved about at random, each in the colour of the source at its centre, with dark
// lead between them. The same picture gets the same cells at every run. Masks come back as they are.
class VoronoiEffect final : public FilterClass<VoronoiEffect, Filter> {
public:
    static constexpr FilterIdentity identity{"Stained Glass", "Stained Glass", "Effects"};
    static constexpr auto Parameters() {
        using Self = VoronoiEffect;
        return std::to_array<ParameterRow<Self>>({
            // code label     unique name   default range  field
            {0, "Spacing", "Spacing", 12.0, {1, 10}, &Self::m_spacing, percent},  // KEEP: the default is above the
                                                                                  // range
            {1, "Randomness", "Randomness", 0.0, {0, 1}, &Self::m_randomness, percent},
            {2, "Edges", "Edges", 0.0, {0, 1}, &Self::m_edges, percent},
        });
    }

    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;

private:
    double m_spacing = 10.0;    // pixels. DIFFERS from the default's 12
    double m_randomness = 0.0;  // of the spacing
    double m_edges = 0.0;       // of the spacing
};

}  // namespace chalkpane
