#include "chalkpane/filters/colour/auto_eq_cc.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <span>

#include "chalkpane/base/memory_loss.h"
#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/colour/fill_table.h"
#include "chalkpane/image/image_rows.h"

namespace chalkpane {
namespace {

using Counts = std::vector<std::int64_t>;

// How often each value is the brightest component, as it is stored, inside `work`: counted by each worker on its own.
template <typename F>
struct CountJob {
    const Image& source;
    const Rect& work;
    std::vector<Counts> workers =
        std::vector<Counts>(static_cast<std::size_t>(std::max(MultiProcessor::Instance().ProcessorCount(), 1)),
                            Counts(static_cast<std::size_t>(F::fullScale) + 1));

    static void Row(std::int32_t y, void* userData, std::int32_t worker) {
        auto& job = *static_cast<CountJob*>(userData);
        Counts& counts = job.workers[static_cast<std::size_t>(worker)];
        const std::size_t offset = static_cast<std::size_t>(std::int64_t{job.work.x0} - job.source.x0) * 4;
        const auto row = ImageRow<F>(job.source, y).subspan(offset, static_cast<std::size_t>(job.work.Width()) * 4);
        for (std::size_t i = 0; i < row.size(); i += 4)
            ++counts[static_cast<std::size_t>(std::max({row[i], row[i + 1], row[i + 2]}) & F::fullScale)];
    }
};
template <typename F>
Counts BrightestCounts(const Image& source, const Rect& work) {
    CountJob<F> job{source, work};
    RunInBands(work.y0, work.y1, work.Width(), &CountJob<F>::Row, &job);
    Counts& all = job.workers.front();
    for (std::size_t i = 1; i < job.workers.size(); ++i)
        std::transform(all.begin(), all.end(), job.workers[i].begin(), all.begin(), std::plus<>());
    return all;
}

// First value at which the running count reaches `wanted`; 0 if it never does.
template <typename Iterator>
std::int32_t Reaches(Iterator first, Iterator last, std::int64_t wanted) {
    std::int64_t sum = 0;
    for (Iterator at = first; at != last; ++at) {
        sum += *at;
        if (sum >= wanted) return static_cast<std::int32_t>(at - first);
    }
    return 0;
}

std::vector<float> Gains(const Counts& counts, std::int64_t pixelCount) {
    const std::int64_t tail = std::max<std::int64_t>(pixelCount / 20, 1);
    const auto top = static_cast<std::int32_t>(counts.size()) - 1;
    const std::int32_t low = Reaches(counts.begin(), counts.end(), tail);
    const std::int32_t high = top - Reaches(counts.rbegin(), counts.rend(), tail);
    const std::int32_t median = Reaches(counts.begin(), counts.end(), pixelCount / 2);
    std::vector<float> gains(counts.size(), 1.0F);
    if (high <= low) return gains;
    const double span = high - low;
    const double power = low < median && median < high ? std::log(0.5) / std::log((median - low) / span) : 1.0;
    FillTable(high - 1, [&](std::int32_t v) {
        if (v < std::max(low, 1)) return;
        const double equalised = std::pow((v - low) / span, power) * span + low;
        gains[static_cast<std::size_t>(v)] = static_cast<float>(equalised / v);
    });
    return gains;
}

}  // namespace

void AutoEqCC::Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region, bool expand) {
    const Rect work = region == nullptr ? source.Bounds() : source.Intersection(*region);
    try {
        if (!source.IsMask() && source.ByteSize() > 0 && work.IsValid()) {
            const std::int64_t pixelCount = std::int64_t{work.Width()} * work.Height();
            m_gains = Gains(
                WithFormatOf(source, [&](auto format) { return BrightestCounts<decltype(format)>(source, work); }),
                pixelCount);
        }
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
        return ApplyInWorkArea(source, result, nullptr, 0,
                               [&source](const Rect& all) { return NewImageLike(source, all); });
    }
    RowFilter::Apply(source, result, fast, region, expand);
}

}  // namespace chalkpane
