#pragma once

#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/parameters/shape_point_list.h"

namespace chalkpane {

// Full scale times the curve, for each channel value 0 .. fullScale. A product that lies within 1e-6 below a whole
// number is that number, so that the curve of a fresh graph gives every value back.
[[nodiscard]] inline std::vector<double> CurveTable(const ShapePointList& curve, std::int32_t fullScale) {
    struct Job {
        const ShapePointList& curve;
        std::int32_t fullScale;
        std::vector<double> table;
    } job{curve, fullScale, std::vector<double>(static_cast<std::size_t>(fullScale) + 1)};
    const auto entry = [](std::int32_t i, void* userData, std::int32_t /*worker*/) {
        auto& [graph, full, table] = *static_cast<Job*>(userData);
        const double product = graph.evaluate(static_cast<double>(i) / full) * full;
        const double above = std::ceil(product);
        table[static_cast<std::size_t>(i)] = above - product <= 1e-6 ? above : product;
    };
    // An entry takes as long as some dozen pixels of other work.
    RunInBands(0, fullScale, 16, entry, &job);
    return std::move(job.table);
}

}  // namespace chalkpane
