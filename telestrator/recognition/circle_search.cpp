#include "telestrator/recognition/circle_search.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <tuple>
#include <utility>

#include "chalkpane/base/multi_processor.h"
#include "telestrator/recognition/distance_histogram.h"
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

// The bounds of a run of points.
struct Extent {
    float minX, minY, maxX, maxY;

    explicit Extent(std::span<const Vector3> points)
        : minX(points.front().x), minY(points.front().y), maxX(minX), maxY(minY) {
        for (const Vector3& point : points) {
            minX = std::min(minX, point.x);
            minY = std::min(minY, point.y);
            maxX = std::max(maxX, point.x);
            maxY = std::max(maxY, point.y);
        }
    }

    // No two of their points have a greater squared distance, rounding included: each of its steps keeps order.
    [[nodiscard]] double MostBetween(const Extent& other) const {
        const double dx = std::max(maxX - other.minX, other.maxX - minX);
        const double dy = std::max(maxY - other.minY, other.maxY - minY);
        return dx * dx + dy * dy;
    }
};

double GreatestSquare(std::span<const Vector3> points, std::span<const Vector3> others, double greatest) {
    for (const Vector3& point : points) {
        for (const Vector3& other : others) {
            const double dx = point.x - other.x;
            const double dy = point.y - other.y;
            greatest = std::max(greatest, dx * dx + dy * dy);
        }
    }
    return greatest;
}

// Runs of points that cannot lie further apart than two that are known are not gone through.
double GreatestDistance(std::span<const Vector3> points) {
    constexpr std::size_t runLength = 32;
    const auto runAt = [&](std::size_t start) {
        return points.subspan(start, std::min(runLength, points.size() - start));
    };
    double greatest = 0;
    for (std::size_t first = 0; first < points.size(); first += runLength) {
        const Extent extent(runAt(first));
        for (std::size_t second = first; second < points.size(); second += runLength) {
            if (extent.MostBetween(Extent(runAt(second))) <= greatest) continue;
            greatest = GreatestSquare(runAt(first), runAt(second), greatest);
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
    bool isClear = false;
    CircleVote winner;
    for (std::int32_t i = 0; i < static_cast<std::int32_t>(search.points.size()); ++i) {
        const Vector3& point = search.points[static_cast<std::size_t>(i)];
        if (!CellsAround(point.x, search.radius).Contains(column)) continue;
        if (!std::exchange(isClear, true)) std::fill(counters.begin(), counters.end(), 0);
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

// True: `a` would have been the best before `b` if all votes had been cast in one go.
bool Beats(const CircleVote& a, const CircleVote& b) {
    const auto castAt = [](const CircleVote& vote) { return std::tuple(vote.point, vote.column, vote.row); };
    return a.count > b.count || (a.count == b.count && castAt(a) < castAt(b));
}

// Casts the votes for one centre.
CircleVote VoteForCell(const Search& search, std::int32_t column, std::int32_t row) {
    std::array<std::uint32_t, binCount> counters{};
    CircleVote winner;
    for (std::size_t i = 0; i < search.points.size(); ++i) {
        const Vector3& point = search.points[i];
        const double dx = CellPosition(column) - point.x;
        const double dy = CellPosition(row) - point.y;
        const double square = dx * dx + dy * dy;
        if (!(square < search.squareBeyond)) continue;
        if (!CellsAround(point.x, search.radius).Contains(column)) continue;
        if (!CellsAround(point.y, search.radius).Contains(row)) continue;
        const std::size_t bin = search.bins.Bin(static_cast<std::size_t>(BinTable::Index(square)), square);
        const std::uint32_t count = ++counters[bin];
        if (count > winner.count) winner = {count, static_cast<std::int32_t>(i), column, row, std::sqrt(square)};
    }
    return winner;
}

// Finds the winner by looking into those blocks of centres alone in which a circle could have as many votes as the best
// one so far. Where a circle was drawn these are few.
class Descent {
public:
    explicit Descent(const Search& search) : search_(search), mostLooks_(LooksWorthTheWholeVote(search)) {}

    // Null: so many blocks may hold the winner that the whole vote takes no longer.
    std::optional<CircleVote> Find() {
        constexpr std::int32_t side = cells / 8;
        std::array<Block, 64> blocks;
        for (std::int32_t i = 0; i < 64; ++i) {
            blocks[static_cast<std::size_t>(i)] = BlockAt(i / 8 * side, i % 8 * side, side);
        }
        if (!VisitAll(blocks)) return std::nullopt;
        return best_;
    }

private:
    struct Block {
        std::int32_t column = 0;
        std::int32_t row = 0;
        std::int32_t side = 0;
        std::uint32_t mostVotes = 0;  // of any one circle
    };

    // A look takes about as long for each point as one of its votes. A point tries each centre in the
    // square around it, of which there is one in 16 square pixels, and the whole vote takes 3 ms besides.
    static std::int32_t LooksWorthTheWholeVote(const Search& search) {
        constexpr double most = 1500;
        constexpr double votesIn3Milliseconds = 1.5e6;
        const double votesOfPoint = search.radius * search.radius / 4;
        const double looks = votesOfPoint + votesIn3Milliseconds / static_cast<double>(search.points.size());
        return static_cast<std::int32_t>(std::min(looks, most));
    }

    // The distances of one counter's votes lie within 2 pixels of a middle.
    [[nodiscard]] Block BlockAt(std::int32_t column, std::int32_t row, std::int32_t side) {
        constexpr double halfBin = 2.01;
        ++looks_;
        const DistanceHistogram distances = DistancesFromBlock(search_.points, column, row, side);
        const std::int32_t most = distances.MostWithin(halfBin + HalfDiagonal(side));
        return {column, row, side, static_cast<std::uint32_t>(most)};
    }

    bool VisitAll(std::span<Block> blocks) {
        std::sort(blocks.begin(), blocks.end(),
                  [](const Block& a, const Block& b) { return a.mostVotes > b.mostVotes; });
        return std::all_of(blocks.begin(), blocks.end(), [&](const Block& block) { return Visit(block); });
    }

    // False: that was one look too many.
    bool Visit(const Block& block) {
        if (block.mostVotes < best_.count) return true;
        if (looks_ > mostLooks_) return false;
        const std::int32_t part = block.side / 2;
        const std::array<std::pair<std::int32_t, std::int32_t>, 4> corners{{{block.column, block.row},
                                                                            {block.column, block.row + part},
                                                                            {block.column + part, block.row},
                                                                            {block.column + part, block.row + part}}};
        if (part == 1) {
            for (const auto& [column, row] : corners) Consider(VoteForCell(search_, column, row));
            return true;
        }
        std::array<Block, 4> parts;
        for (std::size_t i = 0; i < parts.size(); ++i) parts[i] = BlockAt(corners[i].first, corners[i].second, part);
        return VisitAll(parts);
    }

    void Consider(const CircleVote& vote) {
        ++looks_;
        if (Beats(vote, best_)) best_ = vote;
    }

    const Search& search_;
    CircleVote best_;
    std::int32_t mostLooks_;
    std::int32_t looks_ = 0;
};

}  // namespace

Vector3 CircleVote::Centre() const { return {CellPosition(column), CellPosition(row), 0}; }

CircleVote SearchCircle(std::span<const Vector3> points, std::span<std::uint32_t> counters) {
    const double radius = std::min(GreatestDistance(points) * 0.5 + 0.1, greatestRadius);
    Search search{points, counters, radius, SmallestSquareBeyond(radius), Bins(), {}};
    if (const auto found = Descent(search).Find()) return *found;
    MultiProcessor::Instance().Run(0, bandCount - 1, SearchBand, &search);
    CircleVote best;
    for (const CircleVote& winner : search.columnWinners) {
        if (Beats(winner, best)) best = winner;
    }
    return best;
}

}  // namespace chalkpane
