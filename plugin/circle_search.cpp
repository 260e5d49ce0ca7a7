#include "plugin/circle_search.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "filters/multi_processor.h"
#include "plugin/plugin_instance.h"
#include "plugin/shape_recognition.h"

namespace chalkpane {
namespace {

constexpr auto cells = static_cast<std::int32_t>(houghCells);
constexpr double canvasPixels = canvasSize;
constexpr double greatestRadius = canvasPixels * 0.25;

// A vote lies within the greatest radius, so its rounded distance is 256 at most and only these bins are ever reached.
constexpr std::int32_t BinOfDistance(std::int32_t roundedDistance) { return roundedDistance * cells / canvasSize; }
constexpr std::size_t binCount = static_cast<std::size_t>(BinOfDistance(canvasSize / 4)) + 1;
static_assert(binCount == 65);

// The vote goes through the columns one by one instead of through the whole cube for each point: the counters of a
// column fit into a processor's cache and few need clearing. A column's counters see the same votes in the same order
// either way. Bands interleave the columns, so that a stroke at the side of the canvas keeps all workers busy.
constexpr std::int32_t bandCount = 64;
constexpr std::size_t countersPerColumn = houghCells * binCount;
static_assert(bandCount * countersPerColumn <= houghCounters);

struct CellRange {
    std::int32_t first;
    std::int32_t end;  // excluded

    [[nodiscard]] bool Contains(std::int32_t cell) const { return cell >= first && cell < end; }
};

CellRange CellsAround(double coordinate, double radius) {
    return {std::max(TruncateToInt((coordinate - radius) * cells / canvasPixels), 0),
            std::min(TruncateToInt((coordinate + radius) * cells / canvasPixels), cells)};
}

float CellPosition(std::int32_t cell) { return static_cast<float>(canvasPixels * cell / cells); }

struct Search {
    std::span<const Vector3> points;
    std::span<std::uint32_t> counters;
    double radius;
    std::array<CircleVote, houghCells> columnWinners;
};

double GreatestDistance(std::span<const Vector3> points) {
    double greatest = 0;
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        for (const Vector3& other : points.subspan(i + 1)) {
            const double dx = points[i].x - other.x;
            const double dy = points[i].y - other.y;
            greatest = std::max(greatest, dx * dx + dy * dy);
        }
    }
    return std::sqrt(greatest);
}

// Casts the votes of one point in one column.
void VoteInColumn(const Search& search, std::int32_t pointIndex, std::int32_t column, CellRange rows,
                  std::uint32_t* counters, CircleVote& winner) {
    const Vector3& point = search.points[static_cast<std::size_t>(pointIndex)];
    std::array<double, houghCells> distances;
    const double dx = CellPosition(column) - point.x;
    for (std::int32_t row = rows.first; row < rows.end; ++row) {
        const double dy = CellPosition(row) - point.y;
        distances[static_cast<std::size_t>(row)] = std::sqrt(dx * dx + dy * dy);
    }
    for (std::int32_t row = rows.first; row < rows.end; ++row) {
        const double distance = distances[static_cast<std::size_t>(row)];
        if (!(distance < search.radius)) continue;
        const auto bin = static_cast<std::size_t>(BinOfDistance(static_cast<std::int32_t>(distance + 0.5)));
        const std::uint32_t count = ++counters[static_cast<std::size_t>(row) * binCount + bin];
        if (count > winner.count) winner = {count, pointIndex, column, row, distance};
    }
}

CircleVote SearchColumn(const Search& search, std::int32_t column, std::span<std::uint32_t> counters) {
    std::fill(counters.begin(), counters.end(), 0);
    CircleVote winner;
    for (std::int32_t i = 0; i < static_cast<std::int32_t>(search.points.size()); ++i) {
        const Vector3& point = search.points[static_cast<std::size_t>(i)];
        if (!CellsAround(point.x, search.radius).Contains(column)) continue;
        VoteInColumn(search, i, column, CellsAround(point.y, search.radius), counters.data(), winner);
    }
    return winner;
}

void SearchBand(std::int32_t band, void* userData, std::int32_t /*worker*/) {
    Search& search = *static_cast<Search*>(userData);
    const auto counters =
        search.counters.subspan(static_cast<std::size_t>(band) * countersPerColumn, countersPerColumn);
    for (std::int32_t column = band; column < cells; column += bandCount) {
        search.columnWinners[static_cast<std::size_t>(column)] = SearchColumn(search, column, counters);
    }
}

// True: `a` would have been the best before `b` if all votes had been cast in one go. Columns come in ascending order.
bool Beats(const CircleVote& a, const CircleVote& b) {
    return a.count > b.count || (a.count == b.count && a.point < b.point);
}

}  // namespace

Vector3 CircleVote::Centre() const { return {CellPosition(column), CellPosition(row), 0}; }

CircleVote SearchCircle(std::span<const Vector3> points, std::span<std::uint32_t> counters) {
    const double radius = std::min(GreatestDistance(points) * 0.5 + 0.1, greatestRadius);
    Search search{points, counters, radius, {}};
    MultiProcessor::Instance().Run(0, bandCount - 1, SearchBand, &search);
    CircleVote best;
    for (const CircleVote& winner : search.columnWinners) {
        if (Beats(winner, best)) best = winner;
    }
    return best;
}

}  // namespace chalkpane
