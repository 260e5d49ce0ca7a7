#include "chalkpane/filters/neighbourhood/median_filter.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/neighbourhood/median_columns.h"
#include "chalkpane/filters/neighbourhood/median_row.h"
#include "chalkpane/filters/work_area.h"
#include "chalkpane/image/image_rows.h"

namespace chalkpane {
namespace {

// The source's rows with the edge repeated on both sides, as wide as the window of the whole result needs.
struct MedianJob {
    // What a worker keeps from one row to the next.
    struct Worker {
        std::vector<const std::uint8_t*> window;  // the rows of the window at hand
        std::optional<MedianColumns> columns;     // where large windows are counted by columns
        std::int64_t countedRow = 0;              // whose window `columns` holds
    };

    const Image& source;
    Image& result;
    std::int32_t radius;
    std::size_t channels;
    std::size_t paddedRow;                   // bytes
    std::int32_t firstRow;                   // of `padded`
    std::int64_t rows;                       // that some window touches
    std::unique_ptr<std::uint8_t[]> padded;  // those rows, the lowest first
    std::vector<Worker> workers;

    MedianJob(const Image& from, Image& to, std::int32_t pixels)
        : source(from),
          result(to),
          radius(pixels),
          channels(static_cast<std::size_t>(ChannelCount(from))),
          paddedRow((static_cast<std::size_t>(to.Width()) + 2 * static_cast<std::size_t>(pixels)) * channels),
          firstRow(Inside(std::int64_t{to.y0} - pixels, from.y0, from.y1)),
          rows(std::int64_t{Inside(std::int64_t{to.y1} + pixels, from.y0, from.y1)} - firstRow + 1),
          padded(std::make_unique_for_overwrite<std::uint8_t[]>(paddedRow * static_cast<std::size_t>(rows))),
          workers(static_cast<std::size_t>(std::max(MultiProcessor::Instance().ProcessorCount(), 1))) {
        for (Worker& worker : workers) worker.window.resize(2 * static_cast<std::size_t>(pixels) + 1);
        const auto pad = [](std::int32_t row, void* userData, std::int32_t /*worker*/) {
            auto& job = *static_cast<MedianJob*>(userData);
            job.PadRow(static_cast<std::int32_t>(std::int64_t{job.firstRow} + row));
        };
        RunInBands(0, static_cast<std::int32_t>(rows - 1), to.Width(), pad, this);
    }

    // The place inside the source that stands for one beyond its edge.
    static std::int32_t Inside(std::int64_t place, std::int32_t first, std::int32_t last) {
        return static_cast<std::int32_t>(std::clamp<std::int64_t>(place, first, last));
    }

    [[nodiscard]] std::uint8_t* PaddedRow(std::int32_t y) {
        return padded.get() + paddedRow * static_cast<std::size_t>(std::int64_t{y} - firstRow);
    }
    // The row of the window around row y that stands so far above it.
    [[nodiscard]] const std::uint8_t* WindowRow(std::int64_t y, std::int64_t above) {
        return PaddedRow(Inside(y + above, source.y0, source.y1));
    }

    void PadRow(std::int32_t y) {
        std::uint8_t* to = PaddedRow(y);
        const auto row = source.Row8(y);
        const std::int64_t end = std::int64_t{result.x1} + radius + 1;
        std::int64_t x = std::int64_t{result.x0} - radius;
        const auto repeat = [&](std::size_t column, std::int64_t until) {
            for (; x < until; ++x, to += channels) std::memcpy(to, row.data() + column * channels, channels);
        };
        repeat(0, std::min<std::int64_t>(source.x0, end));
        const std::int64_t inside = std::min<std::int64_t>(std::int64_t{source.x1} + 1, end) - x;
        if (inside > 0) {
            const auto bytes = static_cast<std::size_t>(inside) * channels;
            std::memcpy(to, row.data() + static_cast<std::size_t>(x - source.x0) * channels, bytes);
            to += bytes;
            x += inside;
        }
        repeat(static_cast<std::size_t>(std::int64_t{source.x1} - source.x0), end);
    }

    [[nodiscard]] bool CountsByColumns() const {
        return builtWithAvx2 && HasAvx2() && radius >= MedianColumns::leastRadius;
    }

    // A worker's rows come in ascending order, mostly each after the other.
    MedianColumns& ColumnsAround(std::int32_t y, Worker& worker) {
        if (worker.columns && worker.countedRow + 1 == y) {
            worker.columns->MoveDown(WindowRow(worker.countedRow, -radius), WindowRow(y, radius));
        } else {
            if (worker.columns)
                worker.columns->Clear();
            else
                worker.columns.emplace(paddedRow, static_cast<std::int32_t>(channels), radius);
            for (std::int32_t above = -radius; above <= radius; ++above) worker.columns->AddRow(WindowRow(y, above));
        }
        worker.countedRow = y;
        return *worker.columns;
    }

    void Row(std::int32_t y, std::int32_t index) {
        Worker& worker = workers[static_cast<std::size_t>(index)];
        if constexpr (builtWithAvx2)
            if (CountsByColumns()) return ColumnsAround(y, worker).MedianRowAvx2(result.Row8(y));
        for (std::size_t i = 0; i < worker.window.size(); ++i)
            worker.window[i] = WindowRow(y, static_cast<std::int64_t>(i) - radius);
        MedianRow(worker.window, static_cast<std::int32_t>(channels), radius, result.Row8(y));
    }
};

std::unique_ptr<Image> Medians(const Image& source, const Rect& work, std::int32_t radius) {
    auto result = Image::Unwritten(work, source);
    MedianJob job(source, *result, radius);
    const auto row = [](std::int32_t y, void* userData, std::int32_t worker) {
        static_cast<MedianJob*>(userData)->Row(y, worker);
    };
    RunInBands(work.y0, work.y1, work.Width(), row, &job);
    return result;
}

}  // namespace

std::int32_t MedianFilter::SupportRadius() const { return std::clamp(m_radius, 0, largestMedianRadius); }

void MedianFilter::Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* region,
                         bool expand) {
    if (m_radius <= 0) return ApplyAsCopy(source, result);
    ApplyInWorkArea(source, result, region, expand ? SupportRadius() : 0, [&](const Rect& work) {
        return source.GetDepth() == Depth::Eight
                   ? Medians(source, work, SupportRadius())
                   : Medians(*source.Convert(Rect(), Depth::Eight), work, SupportRadius());
    });
}

Rect MedianFilter::InputRegion(const Rect& /*rect*/, const Rect& region) const {
    return Grown(region, SupportRadius());
}
Rect MedianFilter::OutputRegion(const Rect& /*rect*/, const Rect& region) const {
    return Grown(region, SupportRadius());
}

}  // namespace chalkpane
