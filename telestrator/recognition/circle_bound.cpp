#include <algorithm>
#include <array>
#include <cmath>

#include "telestrator/recognition/circle_search.h"
#include "telestrator/recognition/shape_recognition.h"

namespace chalkpane {
namespace {

constexpr double cellPixels = 4;
constexpr double greatestRadius = 256;

// Distances of the points from the middle of a block of centres, in bins of 8 pixels.
class DistanceHistogram {
public:
    static constexpr double binPixels = 8;

    DistanceHistogram(std::span<const Vector3> points, double x, double y) {
        for (const Vector3& point : points) {
            const double dx = point.x - x;
            const double dy = point.y - y;
            const double square = dx * dx + dy * dy;
            // False for NaN.
            if (square < farthest * farthest) ++bins_[static_cast<std::size_t>(std::sqrt(square) / binPixels)];
        }
    }

    // How many points lie at most within `slack` of any one radius up to the greatest that a circle may have.
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

    static constexpr double farthest = 1024;

private:
    std::array<std::int32_t, static_cast<std::size_t>(farthest / binPixels)> bins_{};
};

struct Bound {
    std::span<const Vector3> points;
    double tolerance;
    std::int32_t count;

    // Looks at the block of `side` x `side` centres whose first is (column, row), and into it as long as it may hold
    // one. The distances of two centres of a block from a point differ at most by their own distance.
    [[nodiscard]] bool MayHold(std::int32_t column, std::int32_t row, std::int32_t side) const {
        constexpr std::int32_t smallestSide = 4;
        constexpr double forRounding = 0.01;
        const double half = (side - 1) * cellPixels / 2;
        const DistanceHistogram distances(points, column * cellPixels + half, row * cellPixels + half);
        const double slack = tolerance + half * 1.4142136 + forRounding;
        if (distances.MostWithin(slack) < count) return false;
        if (side <= smallestSide) return true;
        const std::int32_t part = side / 2;
        return MayHold(column, row, part) || MayHold(column + part, row, part) || MayHold(column, row + part, part) ||
               MayHold(column + part, row + part, part);
    }
};

}  // namespace

bool MayLieOnACircle(std::span<const Vector3> points, double tolerance, std::int32_t count) {
    constexpr std::int32_t blockSide = 32;
    constexpr auto cells = static_cast<std::int32_t>(houghCells);
    if (!(tolerance < greatestRadius)) return true;
    const Bound bound{points, std::max(tolerance, 0.0), count};
    for (std::int32_t column = 0; column < cells; column += blockSide) {
        for (std::int32_t row = 0; row < cells; row += blockSide) {
            if (bound.MayHold(column, row, blockSide)) return true;
        }
    }
    return false;
}

}  // namespace chalkpane
