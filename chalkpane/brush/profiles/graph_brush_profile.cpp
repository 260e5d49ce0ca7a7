#include "chalkpane/brush/profiles/graph_brush_profile.h"

#include <bit>

#include "chalkpane/brush/profiles/profile_content.h"
#include "chalkpane/brush/profiles/superellipse.h"

namespace chalkpane {

namespace {

// The curve that a graph answers with: its own, or that of the value it inherits from.
const ShapePointList& CurveOf(GraphValue* graph) {
    static const auto& straight = *new ShapePointList;
    if (graph == nullptr) return straight;
    while (!graph->isSetLocally()) {
        auto* above = dynamic_cast<GraphValue*>(graph->getParent());
        if (above == nullptr) break;
        graph = above;
    }
    return graph->list();
}

ProfileKey ContentOf(const ShapePointList& curve) {
    ProfileKey key{static_cast<std::uint64_t>(ProfileContent::Graph), curve.stepped ? 1U : 0U,
                   std::bit_cast<std::uint64_t>(curve.emptyValue)};
    for (std::size_t i = 0; i < curve.size(); ++i) {
        for (const DoublePair& place : {curve[i].getPoint(), curve[i].getInHandle(), curve[i].getOutHandle()}) {
            key.push_back(std::bit_cast<std::uint64_t>(place.x));
            key.push_back(std::bit_cast<std::uint64_t>(place.y));
        }
    }
    return key;
}

}  // namespace

GraphBrushProfile::GraphBrushProfile(const DabShape& shape, const Matrix3& profileMatrix, Depth maskDepth,
                                     GraphValue* profileGraph)
    : RoundBrushProfile(profileMatrix, maskDepth), graph(profileGraph) {
    IdentifyContent(ContentOf(CurveOf(graph)));
    RoundBrushProfile::Prepare(shape, profileMatrix);
}

std::unique_ptr<Image> GraphBrushProfile::MakeMask(const DabShape& shape) const {
    const Superellipse outline(shape, 0);
    const ShapePointList& curve = CurveOf(graph);
    return MaskOfShape(outline, MaskDepth(), [&](double u, double v) -> std::uint8_t {
        const double t = 1 - outline.Distance(u, v);
        if (t < 0) return 0;
        return CoverageByte(curve.evaluate(t) * 255 + 0.5);
    });
}

}  // namespace chalkpane
