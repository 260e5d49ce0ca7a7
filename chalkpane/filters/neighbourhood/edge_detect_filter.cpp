#include "chalkpane/filters/neighbourhood/edge_detect_filter.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/neighbourhood/edge_row.h"
#include "chalkpane/filters/work_area.h"
#include "chalkpane/image/image_rows.h"

namespace chalkpane {
namespace {

// A slope is at most four times full scale, or what wraps into 16 bits of words above it: so brightening is a table.
template <typename F>
std::vector<typename F::Channel> BrightnessTable(double factor) {
    std::vector<typename F::Channel> table(F::bits == 8 ? std::size_t{255} * 4 + 1 : std::size_t{65536});
    for (std::size_t slope = 0; slope < table.size(); ++slope) {
        const double value = std::clamp(static_cast<double>(slope) * factor, 0.0, static_cast<double>(F::fullScale));
        table[slope] = static_cast<typename F::Channel>(value);
    }
    return table;
}

// Where a slope's sign counts: inside, a negative horizontal slope is no edge.
// KEEP: on the rim of the source its magnitude is taken instead; mattes cut at the border rely on closed outlines.
enum class Place { Inside, Rim };

// The nine channels around one, first row the upper one; b4 is not asked for.
struct Around {
    std::int32_t b0, b1, b2, b3, b5, b6, b7, b8;
};

[[gnu::always_inline]] inline std::int32_t Slope(const Around& b, Place place) {
    const std::int32_t gx = (b.b0 + 2 * b.b3 + b.b6) - (b.b2 + 2 * b.b5 + b.b8);
    const std::int32_t gy = (b.b0 + 2 * b.b1 + b.b2) - (b.b6 + 2 * b.b7 + b.b8);
    const std::int32_t horizontal = place == Place::Rim ? std::abs(gx) : std::max(gx, 0);
    return std::max(horizontal, std::abs(gy));
}

template <typename F>
struct EdgeJob {
    using Channel = typename F::Channel;

    const Image& source;
    Image& result;
    std::size_t channels;
    bool limitToAlpha;
    double factor;
    std::vector<Channel> table;
    std::vector<std::vector<std::uint16_t>> slopes;  // per worker: one row of slopes

    EdgeJob(const Image& from, Image& to, double brightness)
        : source(from),
          result(to),
          channels(static_cast<std::size_t>(ChannelCount(from))),
          limitToAlpha(!from.IsMask() && from.IsPremultiplied()),
          factor(brightness * 0.1),
          table(BrightnessTable<F>(factor)),
          slopes(static_cast<std::size_t>(std::max(MultiProcessor::Instance().ProcessorCount(), 1)),
                 std::vector<std::uint16_t>(static_cast<std::size_t>(to.Width()) * channels)) {}

    // Neighbours of a pixel at the end of the plane have places that 32 bits cannot say.
    [[nodiscard]] const Channel* At(std::int64_t x, std::int64_t y) const {
        const auto row = static_cast<std::int32_t>(std::clamp<std::int64_t>(y, source.y0, source.y1));
        return ImageRow<F>(source, row).data() +
               static_cast<std::size_t>(std::clamp<std::int64_t>(x, source.x0, source.x1) - source.x0) * channels;
    }

    void RimSlopes(std::int64_t x, std::int64_t y, std::uint16_t* out) const {
        for (std::size_t c = 0; c < channels; ++c) {
            const auto at = [&](std::int64_t dx, std::int64_t dy) { return std::int32_t{At(x + dx, y + dy)[c]}; };
            out[c] = static_cast<std::uint16_t>(Slope(
                {at(-1, 1), at(0, 1), at(1, 1), at(-1, 0), at(1, 0), at(-1, -1), at(0, -1), at(1, -1)}, Place::Rim));
        }
    }

    // Edges from x until `end`, all of them inside, straight into the result where there is a vector form.
    void InsideEdges(std::int64_t x, std::int64_t end, std::int32_t y, std::uint16_t* slopesAtX) const {
        const std::size_t count = static_cast<std::size_t>(end - x) * channels;
        const Channel* const upper = At(x, std::int64_t{y} + 1);
        const Channel* const here = At(x, y);
        const Channel* const lower = At(x, std::int64_t{y} - 1);
        if constexpr (builtWithAvx2) {
            Channel* const out = ImageRow<F>(result, y).data() + static_cast<std::size_t>(x - result.x0) * channels;
            if (HasAvx2() && count >= leastEdgeChannels)
                return EdgesAvx2({upper, here, lower, out, count, channels, limitToAlpha, factor});
        }
        InsideSlopes(upper, here, lower, count, slopesAtX);
        Store(x, end, y, slopesAtX);
    }

    void InsideSlopes(const Channel* upper, const Channel* here, const Channel* lower, std::size_t count,
                      std::uint16_t* __restrict out) const {
        const auto step = static_cast<std::ptrdiff_t>(channels);
        for (std::ptrdiff_t i = 0; i < static_cast<std::ptrdiff_t>(count); ++i) {
            out[i] = static_cast<std::uint16_t>(Slope({upper[i - step], upper[i], upper[i + step], here[i - step],
                                                       here[i + step], lower[i - step], lower[i], lower[i + step]},
                                                      Place::Inside));
        }
    }

    void Row(std::int32_t y, std::int32_t worker) {
        std::uint16_t* const row = slopes[static_cast<std::size_t>(worker)].data();
        const auto place = [&](std::int64_t x) { return row + static_cast<std::size_t>(x - result.x0) * channels; };
        const auto rim = [&](std::int64_t first, std::int64_t end) {
            if (first >= end) return;
            for (std::int64_t x = first; x < end; ++x) RimSlopes(x, y, place(x));
            Store(first, end, y, place(first));
        };
        const bool rowInside = y > source.y0 && y < source.y1;
        const std::int64_t end = std::int64_t{result.x1} + 1;
        const std::int64_t first = rowInside ? std::max<std::int64_t>(result.x0, std::int64_t{source.x0} + 1) : end;
        const std::int64_t last = rowInside ? std::min<std::int64_t>(end, source.x1) - 1 : end - 1;
        rim(result.x0, std::min(first, end));
        if (first <= last) InsideEdges(first, last + 1, y, place(first));
        rim(std::max(last + 1, first), end);
    }

    // Pixels x to `end` from their slopes.
    void Store(std::int64_t x, std::int64_t end, std::int32_t y, const std::uint16_t* row) const {
        const auto out = ImageRow<F>(result, y).subspan(static_cast<std::size_t>(x - result.x0) * channels,
                                                        static_cast<std::size_t>(end - x) * channels);
        if (channels == 1) {
            for (std::size_t i = 0; i < out.size(); ++i) out[i] = table[row[i]];
            return;
        }
        for (std::size_t i = 0; i < out.size(); i += 4, ++x) {
            const Channel alpha = At(x, y)[3];
            const Channel limit = limitToAlpha ? alpha : static_cast<Channel>(F::fullScale);
            for (std::size_t c = i; c < i + 3; ++c) out[c] = std::min(table[row[c]], limit);
            out[i + 3] = alpha;
        }
    }
};

template <typename F>
std::unique_ptr<Image> Edges(const Image& source, const Rect& work, double brightness) {
    auto result = Image::Unwritten(work, source);
    EdgeJob<F> job(source, *result, brightness);
    const auto row = [](std::int32_t y, void* userData, std::int32_t worker) {
        static_cast<EdgeJob<F>*>(userData)->Row(y, worker);
    };
    RunInBands(work.y0, work.y1, work.Width(), row, &job);
    return result;
}

}  // namespace

void EdgeDetectFilter::Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* region,
                             bool expand) {
    ApplyInWorkArea(source, result, region, expand ? 1 : 0, [&](const Rect& work) {
        return WithFormatOf(source, [&](auto format) { return Edges<decltype(format)>(source, work, m_brightness); });
    });
}

Rect EdgeDetectFilter::InputRegion(const Rect& /*rect*/, const Rect& region) const { return Grown(region, 1); }
Rect EdgeDetectFilter::OutputRegion(const Rect& /*rect*/, const Rect& region) const { return Grown(region, 1); }

}  // namespace chalkpane
