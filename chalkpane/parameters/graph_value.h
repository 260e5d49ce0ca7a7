#pragma once

#include "chalkpane/parameters/shape_point_list.h"
#include "chalkpane/parameters/typed_value.h"

namespace chalkpane {

// A curve as a parameter: the profile of a brush, the look-up table of a filter.
// KEEP: a graph is compared with no parent, so once set, and even once reset, it stays set.
class GraphValue final : public TypedValue<GraphValue, ShapePointList> {
public:
    explicit GraphValue(const ParameterDef* definition) : TypedValue(definition) {}
    explicit GraphValue(const ShapePointList& literal) : TypedValue(literal) {}
    static void ask(const ParameterValue& any, ShapePointList& out) { any.getGraph(out); }

    void setGraph(const ShapePointList& graph) override { set(graph); }
    void getGraph(ShapePointList& out) const override;

    // For its owner, to edit the value's own curve, or to make it stepped, without a record.
    ShapePointList& list() { return value; }

private:
    friend class TypedValue<GraphValue, ShapePointList>;
    static const ParameterValue* comparable() { return nullptr; }
};

using UndoGraphValue = UndoTypedValue<GraphValue>;

}  // namespace chalkpane
