#pragma once

#include <algorithm>
#include <cstdint>

#include "chalkpane/parameters/animation/colour_spline.h"
#include "chalkpane/parameters/animation/key.h"
#include "chalkpane/parameters/data_set.h"
#include "chalkpane/parameters/parameter_def.h"
#include "chalkpane/parameters/shape_point_list.h"
#include "tests/output_hashes/hash_report.h"

namespace chalkpane::hashes {

// A random value within the range of its parameter, whatever its class, or between -20 and 60 without one. An animated
// value gets a key at its clock's frame.
inline void RandomiseValue(ParameterValue& value, std::int32_t choices, Draws& draws) {
    double low = -20.0;
    double high = 60.0;
    value.getParameter()->getRange(low, high);
    const auto real = [&] { return draws.Between(low, high); };
    const auto whole = [&] { return static_cast<std::int32_t>(real()); };
    value.setBoolean(draws.Below(2) == 0);
    value.setInteger(whole());
    value.setEnumeration(static_cast<std::uint8_t>(draws.Below(static_cast<std::uint32_t>(std::max(choices, 1)))));
    value.setDouble(real());
    value.setFloat(static_cast<float>(real()));
    const double x = real();
    value.setDoubleXY(x, real());
    value.setIntegerXY(static_cast<std::int32_t>(x), whole());
    value.setRect({-3, 2, 40, 31});
    value.setColour({draws.Word(), 16383, draws.Word()});
    ShapePointList graph;
    graph.insert(0.3, draws.Between(0, 1)).setOutHandle(0.45, draws.Between(0, 1));
    graph.insert(0.7, draws.Between(0, 1));
    value.setGraph(graph);
    ColourSpline spline;
    spline.addKnot({draws.Word(), draws.Word(), 0}, 0.1F, 0.4F);
    spline.addKnot({draws.Word(), 99, draws.Word()}, 0.8F, 0.6F);
    value.setColourSpline(spline);
}

}  // namespace chalkpane::hashes
