#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "chalkpane/filters/colour/fill_table.h"
#include "chalkpane/parameters/shape_point_list.h"

namespace chalkpane {

// Full scale times the curve, for each channel value 0 .. fullScale. A product that lies within 1e-6 below a whole
// number is that number, so that the curve of a fresh graph gives every value back.
[[nodiscard]] inline std::vector<double> CurveTable(const ShapePointList& curve, std::int32_t fullScale) {
    std::vector<double> table(static_cast<std::size_t>(fullScale) + 1);
    FillTable(fullScale, [&](std::int32_t i) {
        const double product = curve.evaluate(static_cast<double>(i) / fullScale) * fullScale;
        const double above = std::ceil(product);
        table[static_cast<std::size_t>(i)] = above - product <= 1e-6 ? above : product;
    });
    return table;
}

}  // namespace chalkpane
