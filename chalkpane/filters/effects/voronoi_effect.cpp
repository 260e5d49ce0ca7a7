#include "chalkpane/filters/effects/voronoi_effect.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstring>
#include <type_traits>
#include <vector>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/effects/colour_area.h"
#include "chalkpane/filters/noise/grain_random.h"
#include "chalkpane/filters/row_filter.h"
#include "chalkpane/image/image_rows.h"

namespace chalkpane {
namespace {

constexpr std::uint32_t cellSeed = 190423;
constexpr float unreached = 1.0e9F;

// Settings that would make cells without end are clamped here, far outside what a control offers.
constexpr double smallestSpacing = 0.1;
constexpr double largestSpacing = 1e6;
constexpr double mostRandom = 16.0;

// The centres of the cells near one row: a ring of grid rows, made from the bottom row upward.
class CellRing {
public:
    struct Cell {
        float x;
        float y;
    };

    CellRing(const Rect& area, double spacing, double randomness)
        : m_spacing(spacing),
          m_jitter(spacing * randomness),
          m_rowHeight(std::sqrt(3.0) * spacing * 0.5),
          m_left(area.x0),
          m_rowRadius(static_cast<std::int64_t>(std::ceil((2.0 * randomness + m_rowHeight) / m_rowHeight))),
          m_columns(static_cast<std::size_t>(std::ceil((2.0 * randomness + area.Width()) / spacing + 4.0))),
          m_first(GridRow(area.y0) - 2 * m_rowRadius),
          m_next(m_first),
          m_cells(static_cast<std::size_t>(2 * m_rowRadius + 1) * m_columns) {}

    // Begins at row y as if all rows before it had been made: their numbers are skipped.
    void BeginAt(std::int32_t y) {
        m_next = GridRow(y) - 2 * m_rowRadius;
        m_random = GrainRandom(cellSeed);
        m_random.Jump(GrainJump::Of(static_cast<std::uint64_t>(m_next - m_first) * m_columns * 2));
    }

    // Makes the grid rows that row y needs. Rows come in ascending order.
    void MoveTo(std::int32_t y) {
        for (const std::int64_t last = GridRow(y); m_next <= last; ++m_next) MakeRow(m_next);
    }
    // In the order of the ring, not of the plane: it decides which of two equally near cells is met first.
    [[nodiscard]] const std::vector<Cell>& Cells() const { return m_cells; }

private:
    [[nodiscard]] std::int64_t GridRow(std::int32_t y) const {
        return static_cast<std::int64_t>(std::floor(y / m_rowHeight)) + m_rowRadius;
    }

    // KEEP: 0 .. 2, so cells move to the right and upward only.
    float Shift() { return static_cast<float>(m_random.Next15()) * 6.1035156e-05F; }

    void MakeRow(std::int64_t k) {
        const auto ring = 2 * m_rowRadius + 1;
        const std::int64_t slot = ((k + 10000) % ring + ring) % ring;
        double x = (k % 2 == 0 ? m_spacing * 0.5 : 0.0) - 2.0 * m_spacing;
        const double y = static_cast<double>(k) * m_rowHeight;
        Cell* const cells = m_cells.data() + static_cast<std::size_t>(slot) * m_columns;
        for (std::size_t i = 0; i < m_columns; ++i, x += m_spacing) {
            cells[i].x = static_cast<float>(Shift() * m_jitter + x + m_left);
            cells[i].y = static_cast<float>(Shift() * m_jitter + y);
        }
    }

    double m_spacing;
    double m_jitter;
    double m_rowHeight;
    std::int32_t m_left;
    std::int64_t m_rowRadius;  // grid rows to either side
    std::size_t m_columns;
    std::int64_t m_first;  // grid row that the numbers begin with
    std::int64_t m_next;   // grid row to be made next
    std::vector<Cell> m_cells;
    GrainRandom m_random{cellSeed};
};

// Rounded down and clamped.
std::int32_t ClampedInside(float place, std::int32_t first, std::int32_t last) {
    const double floored = std::floor(static_cast<double>(place));
    return static_cast<std::int32_t>(std::clamp<double>(floored, first, last));
}

template <typename F>
class VoronoiRun {
public:
    using Channel = typename F::Channel;

    VoronoiRun(const Image& source, Image& result, double spacing, double randomness, double edges)
        : m_source(source),
          m_result(result),
          m_ring(result, spacing, randomness),
          m_supportRadius(spacing + spacing * randomness),
          m_edge(edges * spacing),
          m_best(static_cast<std::size_t>(result.Width())),
          m_second(m_best.size()),
          m_colours(m_best.size()) {}

    // Goes on with row y without those before it. False when that cannot be: when some column keeps their colour.
    bool BeginAt(std::int32_t y) {
        m_ring.BeginAt(y);
        Measure(y);
        return std::find(m_best.begin(), m_best.end(), unreached) == m_best.end();
    }

    void Row(std::int32_t y) {
        Measure(y);
        const auto row = ImageRow<F>(m_result, y);
        if (!(m_edge > 0.0)) {
            std::memcpy(row.data(), m_colours.data(), row.size_bytes());
            return;
        }
        for (std::size_t column = 0; column < m_colours.size(); ++column) Paint(column, row.data() + 4 * column);
    }

private:
    // A whole pixel.
    using Colour = std::conditional_t<F::bits == 8, std::uint32_t, std::uint64_t>;

    // Finds the nearest cells of row y.
    void Measure(std::int32_t y) {
        m_ring.MoveTo(y);
        std::fill(m_best.begin(), m_best.end(), unreached);
        std::fill(m_second.begin(), m_second.end(), unreached);
        for (const CellRing::Cell& cell : m_ring.Cells()) Spread(cell, y);
    }

    [[nodiscard]] Colour ColourAt(const CellRing::Cell& cell) const {
        const std::int32_t x = ClampedInside(cell.x, m_source.x0, m_source.x1);
        const std::int32_t y = ClampedInside(cell.y, m_source.y0, m_source.y1);
        const Channel* const pixel =
            ImageRow<F>(m_source, y).data() + (static_cast<std::ptrdiff_t>(x) - m_source.x0) * 4;
        Colour colour;
        std::memcpy(&colour, pixel, sizeof colour);
        return colour;
    }

    void Spread(const CellRing::Cell& cell, std::int32_t y) {
        const float dy = cell.y - static_cast<float>(y);
        const float dy2 = dy * dy;
        const double radius2 = m_supportRadius * m_supportRadius;
        if (dy2 > radius2) return;
        const double w = std::sqrt(radius2 - dy2);
        const double low = std::floor(cell.x - w);
        const double high = std::ceil(cell.x + w);
        if (high < m_result.x0 || low > m_result.x1) return;
        const auto first = static_cast<std::int32_t>(std::max<double>(low, m_result.x0));
        const auto last = static_cast<std::int32_t>(std::min<double>(high, m_result.x1));
        const auto colour = ColourAt(cell);
        const float dx = cell.x - static_cast<float>(first);
        float distance = dx * dx + dy2;
        float step = 1.0F - 2.0F * dx;
        constexpr std::size_t block = 64;
        std::array<float, block> distances;
        const auto end = static_cast<std::size_t>(std::int64_t{last} - m_result.x0) + 1;
        for (auto column = static_cast<std::size_t>(std::int64_t{first} - m_result.x0); column < end; column += block) {
            const std::size_t count = std::min(block, end - column);
            for (std::size_t i = 0; i < count; ++i) {
                distances[i] = distance;
                distance = std::max(distance + step, 0.0F);
                step += 2.0F;
            }
            Meet(distances.data(), count, colour, &m_best[column], &m_second[column], &m_colours[column]);
        }
    }

    // A cell meets `count` columns at these distances. Without branches, in which chance would decide at every column.
    static void Meet(const float* __restrict distances, std::size_t count, Colour colour, float* __restrict best,
                     float* __restrict second, Colour* __restrict colours) {
        for (std::size_t i = 0; i < count; ++i) {
            const float distance = distances[i];
            const float nearest = best[i];
            colours[i] = distance < nearest ? colour : colours[i];
            second[i] = std::min(second[i], std::max(nearest, distance));
            best[i] = std::min(nearest, distance);
        }
    }

    // Darkens a column's colour towards its edge.
    void Paint(std::size_t column, Channel* pixel) const {
        constexpr std::int32_t full = 1 << F::bits;
        const double apart = std::sqrt(m_second[column]) - std::sqrt(m_best[column]);
        std::int32_t weight = full;
        if (apart < m_edge - 1.0)
            weight = 0;
        else if (apart < m_edge)
            weight = Truncated((apart - (m_edge - 1.0)) * full);
        std::array<Channel, 4> colour;
        std::memcpy(colour.data(), &m_colours[column], sizeof colour);
        for (std::size_t c = 0; c < 3; ++c) pixel[c] = static_cast<Channel>((colour[c] * weight) >> F::bits);
        pixel[3] = colour[3];
    }

    const Image& m_source;
    Image& m_result;
    CellRing m_ring;
    double m_supportRadius;  // pixels around its centre that a cell may colour
    double m_edge;           // pixels
    // Of each column: the squares of the distances to the nearest two cells, and the colour of the nearest. A column
    // that no cell reaches keeps the colour of the row before.
    std::vector<float> m_best;
    std::vector<float> m_second;
    std::vector<Colour> m_colours;
};

// Several runs, each of which does bands of rows. The cells are drawn as they are met, so a band begins by skipping the
// numbers of all before it.
template <typename F>
struct VoronoiBands {
    static constexpr std::int32_t bandRows = 64;

    Rect area;
    std::vector<VoronoiRun<F>> workers;
    std::atomic<bool> isWhole{true};  // false: some row wants the one before it

    static void Band(std::int32_t band, void* userData, std::int32_t worker) {
        auto& bands = *static_cast<VoronoiBands*>(userData);
        auto& run = bands.workers[static_cast<std::size_t>(worker)];
        const std::int64_t first = bands.area.y0 + std::int64_t{band} * bandRows;
        const std::int64_t last = std::min<std::int64_t>(first + bandRows - 1, bands.area.y1);
        if (!run.BeginAt(static_cast<std::int32_t>(first))) {
            bands.isWhole = false;
            return;
        }
        for (std::int64_t y = first; y <= last; ++y) run.Row(static_cast<std::int32_t>(y));
    }

    [[nodiscard]] bool Run() {
        MultiProcessor::Instance().Run(0, (area.Height() - 1) / bandRows, &Band, this);
        return isWhole;
    }
};

template <typename F>
std::unique_ptr<Image> Glazed(const Image& source, const Rect& work, double spacing, double randomness, double edges) {
    auto result = Image::Unwritten(work, source);
    const VoronoiRun<F> fresh(source, *result, spacing, randomness, edges);
    const std::int32_t workers = MultiProcessor::Instance().ProcessorCount();
    if (workers > 1 && work.Height() > VoronoiBands<F>::bandRows) {
        VoronoiBands<F> bands{work, std::vector<VoronoiRun<F>>(static_cast<std::size_t>(workers), fresh)};
        if (bands.Run()) return result;
    }
    VoronoiRun<F> run(fresh);
    for (std::int64_t y = work.y0; y <= work.y1; ++y) run.Row(static_cast<std::int32_t>(y));
    return result;
}

}  // namespace

void VoronoiEffect::Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* region,
                          bool /*expand*/) {
    ApplyInColourArea(source, result, region, [&](const Rect& work) {
        return WithFormatOf(source, [&](auto format) {
            return Glazed<decltype(format)>(source, work, std::clamp(m_spacing, smallestSpacing, largestSpacing),
                                            std::clamp(m_randomness, 0.0, mostRandom), m_edges);
        });
    });
}

}  // namespace chalkpane
