#include "chalkpane/filters/blurs/softener.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <span>
#include <vector>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/blurs/convolve_row.h"
#include "chalkpane/filters/work_area.h"
#include "chalkpane/image/image_rows.h"

namespace chalkpane {
namespace {

// Far beyond what a control offers; keeps kernels and grown pictures of a sane size.
constexpr double largestSoftness = 10000.0;

// Bell-shaped taps that add up to 256 or 16384 exactly: what rounding left over goes to the middle one.
template <typename F>
std::vector<typename F::Channel> Kernel(double softness, std::int32_t radius) {
    using Channel = typename F::Channel;
    constexpr std::int32_t total = F::bits == 8 ? 256 : 16384;
    std::vector<double> weights(static_cast<std::size_t>(radius) * 2 + 1);
    for (std::size_t i = 0; i < weights.size(); ++i) {
        const double t = std::abs(static_cast<std::int32_t>(i) - radius) / softness;
        weights[i] = std::exp(-4.0 * t * t);
    }
    const double sum = std::accumulate(weights.begin(), weights.end(), 0.0);
    std::vector<Channel> taps(weights.size());
    std::transform(weights.begin(), weights.end(), taps.begin(), [sum](double weight) {
        return static_cast<Channel>(static_cast<std::int32_t>(total * weight / sum + 0.5));
    });
    const std::int32_t given = std::accumulate(taps.begin(), taps.end(), 0);
    Channel& middle = taps[static_cast<std::size_t>(radius)];
    middle = static_cast<Channel>(middle + total - given);
    return taps;
}

// Scratch of one worker.
template <typename Channel>
struct Scratch {
    std::vector<const Channel*> rows;    // one per tap
    std::vector<const Channel*> shifts;  // `padded` from as many places
    std::vector<Channel> padded;         // a row with a support radius of zeros on both sides
};

// The first pass goes along the columns, the second along the rows. A row of the second needs no other row of the
// first, so both go over one row after the other, and what lies between them is one row that stays close to the
// processor.
template <typename F>
struct BlurJob {
    using Channel = typename F::Channel;

    const Image& source;
    Image& result;
    std::int32_t radius;
    std::size_t channels;
    std::vector<Channel> taps;
    std::vector<Channel> zeros;  // a row of the source's length
    std::vector<Scratch<Channel>> workers;

    BlurJob(const Image& from, Image& to, double softness, std::int32_t pixels)
        : source(from),
          result(to),
          radius(pixels),
          channels(static_cast<std::size_t>(ChannelCount(from))),
          taps(Kernel<F>(softness, pixels)),
          zeros(static_cast<std::size_t>(from.Width()) * channels),
          workers(static_cast<std::size_t>(std::max(MultiProcessor::Instance().ProcessorCount(), 1))) {
        const std::size_t row = static_cast<std::size_t>(to.Width()) * channels;
        for (auto& scratch : workers) {
            scratch.rows.resize(taps.size());
            scratch.padded.resize(row + 2 * static_cast<std::size_t>(radius) * channels);
            for (std::size_t tap = 0; tap < taps.size(); ++tap)
                scratch.shifts.push_back(scratch.padded.data() + tap * channels);
        }
    }

    void BlurColumns(std::int32_t y, Scratch<Channel>& scratch) {
        const std::int32_t first = std::max(result.x0, source.x0);
        const std::int32_t last = std::min(result.x1, source.x1);
        const auto offset = static_cast<std::size_t>(std::int64_t{first} - source.x0) * channels;
        for (std::size_t tap = 0; tap < taps.size(); ++tap) {
            const std::int64_t row = std::int64_t{y} - radius + static_cast<std::int64_t>(tap);
            const bool inside = row >= source.y0 && row <= source.y1;
            scratch.rows[tap] =
                (inside ? ImageRow<F>(source, static_cast<std::int32_t>(row)).data() : zeros.data()) + offset;
        }
        // Columns outside the source stay zeros.
        const auto out = std::span(scratch.padded)
                             .subspan(static_cast<std::size_t>(std::int64_t{first} - result.x0 + radius) * channels,
                                      static_cast<std::size_t>(std::int64_t{last} - first + 1) * channels);
        ConvolveRow(std::span<const Channel* const>(scratch.rows), std::span<const Channel>(taps), out);
    }

    void Row(std::int32_t y, Scratch<Channel>& scratch) {
        BlurColumns(y, scratch);
        ConvolveRow(std::span<const Channel* const>(scratch.shifts), std::span<const Channel>(taps),
                    ImageRow<F>(result, y));
    }
};

template <typename F>
std::unique_ptr<Image> Blurred(const Image& source, const Rect& work, double softness, std::int32_t radius) {
    auto result = Image::Unwritten(work, source);
    BlurJob<F> job(source, *result, softness, radius);
    const auto row = [](std::int32_t y, void* userData, std::int32_t worker) {
        auto& run = *static_cast<BlurJob<F>*>(userData);
        run.Row(y, run.workers[static_cast<std::size_t>(worker)]);
    };
    RunInBands(work.y0, work.y1, work.Width(), row, &job);
    return result;
}

}  // namespace

std::int32_t Softener::SupportRadius() const {
    const double softness = std::min(m_softness * m_scale, largestSoftness);
    return softness > 0.0 ? static_cast<std::int32_t>(std::ceil(softness)) : 0;
}

void Softener::Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* region,
                     bool expand) {
    const double softness = std::min(m_softness * m_scale, largestSoftness);
    if (!(softness >= 1.0)) return ApplyAsCopy(source, result);
    const std::int32_t radius = SupportRadius();
    ApplyInWorkArea(source, result, region, expand ? radius : 0, [&](const Rect& work) {
        return WithFormatOf(source,
                            [&](auto format) { return Blurred<decltype(format)>(source, work, softness, radius); });
    });
}

Rect Softener::InputRegion(const Rect& /*rect*/, const Rect& region) const { return Grown(region, SupportRadius()); }
Rect Softener::OutputRegion(const Rect& /*rect*/, const Rect& region) const { return Grown(region, SupportRadius()); }

}  // namespace chalkpane
