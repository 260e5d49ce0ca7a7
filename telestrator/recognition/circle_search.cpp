#include "telestrator/recognition/circle_search.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "chalkpane/base/multi_processor.h"
#include "telestrator/recognition/shape_recognition.h"

namespace chalkpane {
namespace {

constexpr auto cells = static_cast<std::int32_t>(houghCells);
constexpr std::int32_t canvasSize = 1024;
constexpr double canvasPixels = canvasSize;
constexpr double greatestRadius = canvasPixels * 0.25;

// A vote lies within the greatest radius, so its rounded distance is 256 at most and only these bins are ever reached.
constexpr std::int32_t BinOfRoundedDistance(std::int32_t distance) { return distance * cells / canvasSize; }
constexpr std::size_t binCount = static_cast<std::size_t>(BinOfRoundedDistance(canvasSize / 4)) + 1;
static_assert(binCount == 65);

std::int32_t BinOfSquare(double square) {
    return BinOfRoundedDistance(static_cast<std::int32_t>(std::sqrt(square) + 0.5));
}

// The bin of a vote without its square root. A bin b begins where the distance reaches 4b - 1/2, its square
// 4 (4b^2 - b) + 1/4: at a whole number once a quarter is taken off and the rest divided by 4, both of which are exact.
// So a table by that whole number answers, but for the few entries at whose far end the root may round up into the
// next bin: those say that the root has to be taken.
class BinTable {
public:
    BinTable() {
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            const double start = static_cast<double>(i) * 4 + 0.25;
            const std::int32_t first = BinOfSquare(start);
            const std::int32_t last = BinOfSquare(std::nextafter(start + 4, 0.0));
            entries_[i] = first == last ? static_cast<std::uint8_t>(first) : takeTheRoot;
        }
    }

    // For squares from 0; below a quarter the index is 0 as well.
    static double Index(double square) { return (square - 0.25) * 0.25; }

    [[nodiscard]] std::size_t Bin(std::size_t index, double square) const {
        const std::uint8_t entry = entries_[index];
        return entry != takeTheRoot ? entry : static_cast<std::size_t>(BinOfSquare(square));
    }

private:
    static constexpr std::uint8_t takeTheRoot = 255;
    std::array<std::uint8_t, canvasSize * canvasSize / 64 + 1> entries_;  // up to the square of the greatest radius
};

const BinTable& Bins() {
    static const BinTable table;
    return table;
}

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

constexpr float CellPosition(std::int32_t cell) { return static_cast<float>(canvasPixels * cell / cells); }

constexpr std::array<float, houghCells> cellPositions = [] {
    std::array<float, houghCells> positions{};
    for (std::int32_t cell = 0; cell < cells; ++cell) positions[static_cast<std::size_t>(cell)] = CellPosition(cell);
    return positions;
}();

// The smallest square whose root is not below `radius`.
double SmallestSquareBeyond(double radius) {
    double square = radius * radius;
    while (std::sqrt(square) >= radius) square = std::nextafter(square, 0.0);
    while (std::sqrt(square) < radius) square = std::nextafter(square, 2 * square);
    return square;
}

struct Search {
    std::span<const Vector3> points;
    std::span<std::uint32_t> counters;
    double radius;
    double squareBeyond;  // votes end before this square of the distance
    const BinTable& bins;
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

// Squared distances of one point from the cells of one column, and where they stand in the bin table.
struct ColumnDistances {
    std::array<double, houghCells> squares;
    std::array<double, houghCells> reals;
    std::array<std::int32_t, houghCells> indices;

    // In loops apart, which vectorise.
    void Measure(const Vector3& point, std::int32_t column, CellRange rows) {
        const auto first = static_cast<std::size_t>(rows.first);
        const auto end = static_cast<std::size_t>(std::max(rows.first, rows.end));
        const double dx = CellPosition(column) - point.x;
        const double dxSquared = dx * dx;
        for (std::size_t row = first; row < end; ++row) {
            const double dy = cellPositions[row] - point.y;
            squares[row] = dxSquared + dy * dy;
        }
        for (std::size_t row = first; row < end; ++row) reals[row] = BinTable::Index(squares[row]);
        for (std::size_t row = first; row < end; ++row) indices[row] = static_cast<std::int32_t>(reals[row]);
    }
};

// Casts the votes of one point in one column.
void VoteInColumn(const Search& search, std::int32_t pointIndex, std::int32_t column, CellRange rows,
                  std::uint32_t* counters, CircleVote& winner) {
    ColumnDistances distances;
    distances.Measure(search.points[static_cast<std::size_t>(pointIndex)], column, rows);
    for (std::int32_t row = rows.first; row < rows.end; ++row) {
        const auto cell = static_cast<std::size_t>(row);
        const double square = distances.squares[cell];
        if (!(square < search.squareBeyond)) continue;
        const std::size_t bin = search.bins.Bin(static_cast<std::size_t>(distances.indices[cell]), square);
        const std::uint32_t count = ++counters[cell * binCount + bin];
        if (count > winner.count) winner = {count, pointIndex, column, row, std::sqrt(square)};
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
    Search search{points, counters, radius, SmallestSquareBeyond(radius), Bins(), {}};
    MultiProcessor::Instance().Run(0, bandCount - 1, SearchBand, &search);
    CircleVote best;
    for (const CircleVote& winner : search.columnWinners) {
        if (Beats(winner, best)) best = winner;
    }
    return best;
}

}  // namespace chalkpane
