#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <span>

#include "telestrator/geometry.h"

namespace chalkpane {

// How many points lie at which distance from a place, in bins of 2 pixels: what bounds a circle around any centre near
// that place. Points from 1,024 pixels on are left out.
class DistanceHistogram {
public:
    DistanceHistogram(std::span<const Vector3> points, double x, double y) {
        for (const Vector3& point : points) {
            const double dx = point.x - x;
            const double dy = point.y - y;
            const double square = dx * dx + dy * dy;
            // False for NaN.
            if (square < farthest * farthest) ++bins_[static_cast<std::size_t>(std::sqrt(square) / binPixels)];
        }
    }

    // The most points that lie within `slack` of one radius, whatever radius a circle may have. Up to 500.
    [[nodiscard]] std::int32_t MostWithin(double slack) const {
        const auto width = static_cast<std::size_t>(std::ceil(2 * slack / binPixels)) + 1;
        const auto reached = static_cast<std::size_t>((greatestRadius + slack) / binPixels) + 1;
        const std::size_t end = std::min(reached, bins_.size());
        std::int32_t within = 0;
        std::int32_t most = 0;
        for (std::size_t bin = 0; bin < end; ++bin) {
            within += bins_[bin];
            if (bin >= width) within -= bins_[bin - width];
            most = std::max(most, within);
        }
        return most;
    }

private:
    static constexpr double binPixels = 2;
    static constexpr double farthest = 1024;
    static constexpr double greatestRadius = 258;  // a quarter of the canvas, and half a bin of the vote

    std::array<std::int32_t, static_cast<std::size_t>(farthest / binPixels)> bins_{};
};

// How far two centres of a block of side * side of them, 4 pixels apart, lie at most from its middle.
constexpr double HalfDiagonal(std::int32_t side) { return (side - 1) * 2 * 1.4142136; }

// The distances from the middle of the block whose first centre is (column, row).
[[nodiscard]] inline DistanceHistogram DistancesFromBlock(std::span<const Vector3> points, std::int32_t column,
                                                          std::int32_t row, std::int32_t side) {
    return {points, column * 4 + (side - 1) * 2.0, row * 4 + (side - 1) * 2.0};
}

}  // namespace chalkpane
