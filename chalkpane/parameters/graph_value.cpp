#include "chalkpane/parameters/graph_value.h"

namespace chalkpane {

void GraphValue::getGraph(ShapePointList& out) const {
    if (const ParameterValue* above = inheritedFrom()) return above->getGraph(out);
    out = value;
}

}  // namespace chalkpane
