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
std::vector<typename F::Channel> Kernel(double softness, std::int32_t reach) {
    using Channel = typename F::Channel;
    constexpr std::int32_t total = F::bits == 8 ? 256 : 16384;
    std::vector<double> weights(static_cast<std::size_t>(reach) * 2 + 1);
    for (std::size_t i = 0; i < weights.size(); ++i) {
        const double t = std::abs(static_cast<std::int32_t>(i) - reach) / softness;
        weights[i] = std::exp(-4.0 * t * t);
    }
    const double sum = std::accumulate(weights.begin(), weights.end(), 0.0);
    std::vector<Channel> taps(weights.size());
    std::transform(weights.begin(), weights.end(), taps.begin(), [sum](double weight) {
        return static_cast<Channel>(static_cast<std::int32_t>(total * weight / sum + 0.5));
    });
    const std::int32_t given = std::accumulate(taps.begin(), taps.end(), 0);
    Channel& middle = taps[static_cast<std::size_t>(reach)];
    middle = static_cast<Channel>(middle + total - given);
    return taps;
}

// Scratch of one worker.
template <typename Channel>
struct Scratch {
    std::vector<const Channel*> rows;  // one per tap
    std::vector<Channel> padded;       // a row with a reach of zeros on both sides
};

template <typename F>
struct BlurJob {
    using Channel = typename F::Channel;

    const Image& source;
    Image& intermediate;
    Image& result;
    std::int32_t reach;
    std::size_t channels;
    std::vector<Channel> taps;
    std::vector<Channel> zeros;  // a row of the source's length
    std::vector<Scratch<Channel>> workers;

    BlurJob(const Image& from, Image& between, Image& to, double softness, std::int32_t pixels)
        : source(from),
          intermediate(between),
          result(to),
          reach(pixels),
          channels(static_cast<std::size_t>(ChannelCount(from))),
          taps(Kernel<F>(softness, pixels)),
          zeros(static_cast<std::size_t>(from.Width()) * channels),
          workers(static_cast<std::size_t>(std::max(MultiProcessor::Instance().ProcessorCount(), 1))) {
        const std::size_t margin = static_cast<std::size_t>(reach) * channels;
        const std::size_t row = static_cast<std::size_t>(between.Width()) * channels;
        for (auto& scratch : workers) {
            scratch.rows.resize(taps.size());
            scratch.padded.resize(row + 2 * margin);
        }
    }

    void BlurColumns(std::int32_t y, Scratch<Channel>& scratch) {
        const std::int32_t first = std::max(intermediate.x0, source.x0);
        const std::int32_t last = std::min(intermediate.x1, source.x1);
        const auto offset = static_cast<std::size_t>(first - source.x0) * channels;
        for (std::size_t tap = 0; tap < taps.size(); ++tap) {
            const std::int64_t row = std::int64_t{y} - reach + static_cast<std::int64_t>(tap);
            const bool inside = row >= source.y0 && row <= source.y1;
            scratch.rows[tap] =
                (inside ? ImageRow<F>(source, static_cast<std::int32_t>(row)).data() : zeros.data()) + offset;
        }
        // Columns outside the source stay the zeros that the new image has.
        const auto out = ImageRow<F>(intermediate, y)
                             .subspan(static_cast<std::size_t>(first - intermediate.x0) * channels,
                                      static_cast<std::size_t>(last - first + 1) * channels);
        ConvolveRow(std::span<const Channel* const>(scratch.rows), std::span<const Channel>(taps), out);
    }

    void BlurRow(std::int32_t y, Scratch<Channel>& scratch) {
        const auto row = ImageRow<F>(intermediate, y);
        std::copy(row.begin(), row.end(),
                  scratch.padded.begin() + static_cast<std::ptrdiff_t>(reach) * static_cast<std::ptrdiff_t>(channels));
        for (std::size_t tap = 0; tap < taps.size(); ++tap) scratch.rows[tap] = scratch.padded.data() + tap * channels;
        ConvolveRow(std::span<const Channel* const>(scratch.rows), std::span<const Channel>(taps),
                    ImageRow<F>(result, y));
    }

    // One pass over all rows; rows are independent of one another.
    template <void (BlurJob::*pass)(std::int32_t, Scratch<Channel>&)>
    void Run() {
        const auto row = [](std::int32_t y, void* userData, std::int32_t worker) {
            auto& job = *static_cast<BlurJob*>(userData);
            (job.*pass)(y, job.workers[static_cast<std::size_t>(worker)]);
        };
        RunInBands(result.y0, result.y1, result.Width(), row, this);
    }
};

template <typename F>
std::unique_ptr<Image> Blurred(const Image& source, const Rect& work, double softness, std::int32_t reach) {
    Image intermediate(work, source.type, source.depth, source.flag);
    auto result = NewImageLike(source, work);
    BlurJob<F> job(source, intermediate, *result, softness, reach);
    job.template Run<&BlurJob<F>::BlurColumns>();
    job.template Run<&BlurJob<F>::BlurRow>();
    return result;
}

}  // namespace

std::int32_t Softener::Reach() const {
    const double softness = std::min(m_softness * m_scale, largestSoftness);
    return softness > 0.0 ? static_cast<std::int32_t>(std::ceil(softness)) : 0;
}

void Softener::Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* region,
                     bool expand) {
    const double softness = std::min(m_softness * m_scale, largestSoftness);
    if (!(softness >= 1.0)) return ApplyAsCopy(source, result);
    const std::int32_t reach = Reach();
    ApplyInWorkArea(source, result, region, expand ? reach : 0, [&](const Rect& work) {
        return WithFormatOf(source,
                            [&](auto format) { return Blurred<decltype(format)>(source, work, softness, reach); });
    });
}

Rect Softener::InputRegion(const Rect& /*rect*/, const Rect& region) const { return Grown(region, Reach()); }
Rect Softener::OutputRegion(const Rect& /*rect*/, const Rect& region) const { return Grown(region, Reach()); }

}  // namespace chalkpane
