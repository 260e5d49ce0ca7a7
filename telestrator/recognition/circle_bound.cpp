#include <algorithm>

#include "telestrator/recognition/circle_search.h"
#include "telestrator/recognition/distance_histogram.h"
#include "telestrator/recognition/shape_recognition.h"

namespace chalkpane {
namespace {

struct Bound {
    std::span<const Vector3> points;
    double tolerance;
    std::int32_t count;

    // Looks at the block of `side` * `side` centres whose first is (column, row), and into it as long as it may hold
    // one. The distances of two centres from a point differ at most by their own distance.
    [[nodiscard]] bool MayHold(std::int32_t column, std::int32_t row, std::int32_t side) const {
        constexpr std::int32_t smallestSide = 4;
        constexpr double forRounding = 0.01;
        const double slack = tolerance + HalfDiagonal(side) + forRounding;
        if (DistancesFromBlock(points, column, row, side).MostWithin(slack) < count) return false;
        if (side <= smallestSide) return true;
        const std::int32_t part = side / 2;
        return MayHold(column, row, part) || MayHold(column + part, row, part) || MayHold(column, row + part, part) ||
               MayHold(column + part, row + part, part);
    }
};

}  // namespace

bool MayLieOnACircle(std::span<const Vector3> points, double tolerance, std::int32_t count) {
    constexpr std::int32_t blockSide = 32;
    constexpr double greatestTolerance = 256;
    constexpr auto cells = static_cast<std::int32_t>(houghCells);
    if (!(tolerance < greatestTolerance)) return true;
    const Bound bound{points, std::max(tolerance, 0.0), count};
    for (std::int32_t column = 0; column < cells; column += blockSide) {
        for (std::int32_t row = 0; row < cells; row += blockSide) {
            if (bound.MayHold(column, row, blockSide)) return true;
        }
    }
    return false;
}

}  // namespace chalkpane
