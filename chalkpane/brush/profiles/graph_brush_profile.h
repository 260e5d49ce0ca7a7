#pragma once

#include "chalkpane/brush/profiles/round_brush_profile.h"
#include "chalkpane/parameters/graph_value.h"

namespace chalkpane {

// A superellipse whose coverage follows a curve, from its edge at 0 to its middle at 1.
class GraphBrushProfile final : public RoundBrushProfile {
public:
    // profileGraph: not owned, outlives the profile; read now alone. Null: the straight line.
    GraphBrushProfile(const DabShape& shape, const Matrix3& profileMatrix, Depth maskDepth, GraphValue* profileGraph);

    [[nodiscard]] GraphValue* GetGraph() const override { return graph; }
    [[nodiscard]] std::unique_ptr<Image> MakeMask(const DabShape& shape) const override;

private:
    GraphValue* graph;
};

}  // namespace chalkpane
