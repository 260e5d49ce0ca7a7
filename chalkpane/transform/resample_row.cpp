#include "chalkpane/transform/resample_row.h"

#include <algorithm>
#include <array>

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/transform/resample_inner.h"

namespace chalkpane {

namespace {

// Columns first .. end - 1.
struct Columns {
    std::ptrdiff_t first = 0;
    std::ptrdiff_t end = 0;

    [[nodiscard]] Columns Intersection(const Columns& other) const {
        const std::ptrdiff_t start = std::max(first, other.first);
        return {start, std::max(start, std::min(end, other.end))};
    }
};

constexpr std::int64_t CeilingOfQuotient(std::int64_t a, std::int64_t positive) {
    if (positive == 65536) return (a + 65535) >> 16;  // moves: saves the divisions of every row
    return a / positive + (a % positive > 0 ? 1 : 0);
}

// Those of the columns 0 .. count - 1 in which position + column * step lies in low .. high - 1.
Columns ColumnsWithin(std::int64_t position, std::int64_t step, std::int64_t low, std::int64_t high,
                      std::ptrdiff_t count) {
    if (step == 0) return position >= low && position < high ? Columns{0, count} : Columns{};
    // A falling iteration is a rising one in the mirrored range.
    const bool falls = step < 0;
    const std::int64_t from = falls ? position - high + 1 : low - position;
    const std::int64_t to = falls ? position - low + 1 : high - position;
    const std::int64_t stride = falls ? -step : step;
    const std::int64_t limit = count;
    return {static_cast<std::ptrdiff_t>(std::clamp<std::int64_t>(CeilingOfQuotient(from, stride), 0, limit)),
            static_cast<std::ptrdiff_t>(std::clamp<std::int64_t>(CeilingOfQuotient(to, stride), 0, limit))};
}

// The columns whose upper left neighbour lies in the source area widened by `margin` on the lower and left side.
Columns ColumnsInArea(const Rect& area, const ResampleIterator& iterator, std::int64_t marginLow,
                      std::int64_t marginHigh, std::ptrdiff_t count) {
    const auto fixed = [](std::int64_t value) { return value * 65536; };
    return ColumnsWithin(iterator.u, iterator.stepU, fixed(area.x0 - marginLow), fixed(area.x1 + marginHigh), count)
        .Intersection(
            ColumnsWithin(iterator.v, iterator.stepV, fixed(area.y0 - marginLow), fixed(area.y1 + marginHigh), count));
}

// One pixel at the border, where neighbours may lie outside the area.
template <typename F, int channels>
void ResampleEdge(const ResampleSource<typename F::Channel>& source, std::int64_t u, std::int64_t v,
                  typename F::Channel* target) {
    using Channel = typename F::Channel;
    static constexpr std::array<Channel, 4> nothing{};
    const Rect& area = source.area;
    const auto neighbour = [&](std::int64_t x, std::int64_t y) {
        if (x < area.x0 || x > area.x1 || y < area.y0 || y > area.y1) return nothing.data();
        return source.first + (y - area.y0) * source.rowStep + (x - area.x0) * channels;
    };
    const std::int64_t x = u >> 16;
    const std::int64_t y = v >> 16;
    const Channel* p00 = neighbour(x, y);
    const Channel* p10 = neighbour(x + 1, y);
    const Channel* p01 = neighbour(x, y + 1);
    const Channel* p11 = neighbour(x + 1, y + 1);
    const Fractions f(u, v);
    for (int c = 0; c < channels; ++c) target[c] = Interpolate<F>(p00[c], p10[c], p01[c], p11[c], f);
}

template <typename F, int channels, typename Inner>
void ResampleRow(const ResampleSource<typename F::Channel>& source, const ResampleIterator& iterator,
                 typename F::Channel* target, std::ptrdiff_t count) {
    using Channel = typename F::Channel;
    const Columns reached = ColumnsInArea(source.area, iterator, 1, 1, count);
    Columns inside = reached.Intersection(ColumnsInArea(source.area, iterator, 0, 0, count));
    if (inside.first >= inside.end) inside = {reached.end, reached.end};
    const auto zero = [&](std::ptrdiff_t first, std::ptrdiff_t end) {
        std::fill(target + first * channels, target + end * channels, Channel{0});
    };
    const auto edges = [&](std::ptrdiff_t first, std::ptrdiff_t end) {
        for (std::ptrdiff_t x = first; x < end; ++x)
            ResampleEdge<F, channels>(source, iterator.u + x * iterator.stepU, iterator.v + x * iterator.stepV,
                                      target + x * channels);
    };
    zero(0, reached.first);
    edges(reached.first, inside.first);
    if (inside.first < inside.end) {
        ResampleIterator inner = iterator;  // counted from the area's lower left pixel
        inner.u += inside.first * iterator.stepU - source.area.x0 * std::int64_t{65536};
        inner.v += inside.first * iterator.stepV - source.area.y0 * std::int64_t{65536};
        ResampleInner<F, channels, Inner>(source, inner, target + inside.first * channels, inside.end - inside.first);
    }
    edges(inside.end, reached.end);
    zero(reached.end, count);
}

}  // namespace

template <typename F>
ResampleRowFunction<F> ResampleRowFunctions<F>::Fastest() const {
    return HasAvx2() && vector != nullptr ? vector : plain;
}

template <typename F>
ResampleRowFunctions<F> ResampleRowFor(std::int32_t channels) {
    ResampleRowFunctions<F> functions{channels == 1 ? &ResampleRow<F, 1, PlainInner<F, 1>>
                                                    : &ResampleRow<F, 4, PlainInner<F, 4>>};
    if constexpr (builtWithAvx2)
        functions.vector = channels == 1 ? &ResampleRow<F, 1, Avx2Inner<F, 1>> : &ResampleRow<F, 4, Avx2Inner<F, 4>>;
    return functions;
}

template struct ResampleRowFunctions<PixelFormat8>;
template struct ResampleRowFunctions<PixelFormat14>;
template ResampleRowFunctions<PixelFormat8> ResampleRowFor<PixelFormat8>(std::int32_t);
template ResampleRowFunctions<PixelFormat14> ResampleRowFor<PixelFormat14>(std::int32_t);

}  // namespace chalkpane
