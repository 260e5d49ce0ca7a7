#include "chalkpane/filters/neighbourhood/median_filter.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/neighbourhood/median_row.h"
#include "chalkpane/filters/work_area.h"
#include "chalkpane/image/image_rows.h"

namespace chalkpane {
namespace {

// The source's rows with the edge repeated on both sides, as wide as the window of the whole result needs.
struct MedianJob {
    const Image& source;
    Image& result;
    std::int32_t radius;
    std::size_t channels;
    std::size_t paddedRow;                                  // bytes
    std::vector<std::uint8_t> padded;                       // the rows that some window touches, the lowest first
    std::int32_t firstRow;                                  // of `padded`
    std::vector<std::vector<const std::uint8_t*>> windows;  // per worker: the rows of the window at hand

    MedianJob(const Image& from, Image& to, std::int32_t pixels)
        : source(from),
          result(to),
          radius(pixels),
          channels(static_cast<std::size_t>(ChannelCount(from))),
          paddedRow((static_cast<std::size_t>(to.Width()) + 2 * static_cast<std::size_t>(pixels)) * channels),
          firstRow(Inside(std::int64_t{to.y0} - pixels, from.y0, from.y1)),
          windows(static_cast<std::size_t>(std::max(MultiProcessor::Instance().ProcessorCount(), 1)),
                  std::vector<const std::uint8_t*>(2 * static_cast<std::size_t>(pixels) + 1)) {
        const std::int64_t lastRow = Inside(std::int64_t{to.y1} + pixels, from.y0, from.y1);
        padded.resize(paddedRow * static_cast<std::size_t>(lastRow - firstRow + 1));
        for (std::int64_t y = firstRow; y <= lastRow; ++y) PadRow(static_cast<std::int32_t>(y));
    }

    // The place inside the source that stands for one beyond its edge.
    static std::int32_t Inside(std::int64_t place, std::int32_t first, std::int32_t last) {
        return static_cast<std::int32_t>(std::clamp<std::int64_t>(place, first, last));
    }

    [[nodiscard]] std::uint8_t* PaddedRow(std::int32_t y) {
        return padded.data() + paddedRow * static_cast<std::size_t>(y - firstRow);
    }

    void PadRow(std::int32_t y) {
        std::uint8_t* to = PaddedRow(y);
        const auto row = source.Row8(y);
        const std::int64_t end = std::int64_t{result.x1} + radius + 1;
        for (std::int64_t x = std::int64_t{result.x0} - radius; x < end; ++x, to += channels) {
            const auto column = static_cast<std::size_t>(Inside(x, source.x0, source.x1) - source.x0);
            std::memcpy(to, row.data() + column * channels, channels);
        }
    }

    void Row(std::int32_t y, std::int32_t worker) {
        auto& window = windows[static_cast<std::size_t>(worker)];
        for (std::size_t i = 0; i < window.size(); ++i)
            window[i] =
                PaddedRow(Inside(std::int64_t{y} - radius + static_cast<std::int64_t>(i), source.y0, source.y1));
        MedianRow(window, static_cast<std::int32_t>(channels), radius, result.Row8(y));
    }
};

std::unique_ptr<Image> Medians(const Image& source, const Rect& work, std::int32_t radius) {
    auto result = NewImageLike(source, work);
    MedianJob job(source, *result, radius);
    const auto row = [](std::int32_t y, void* userData, std::int32_t worker) {
        static_cast<MedianJob*>(userData)->Row(y, worker);
    };
    RunInBands(work.y0, work.y1, work.Width(), row, &job);
    return result;
}

}  // namespace

std::int32_t MedianFilter::Reach() const { return std::clamp(m_radius, 0, largestMedianRadius); }

void MedianFilter::Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* region,
                         bool expand) {
    if (m_radius <= 0) return ApplyAsCopy(source, result);
    ApplyInWorkArea(source, result, region, expand ? Reach() : 0, [&](const Rect& work) {
        return source.depth == 0 ? Medians(source, work, Reach()) : Medians(*source.Convert(Rect(), 0), work, Reach());
    });
}

Rect MedianFilter::InputRegion(const Rect& /*rect*/, const Rect& region) const { return Grown(region, Reach()); }
Rect MedianFilter::OutputRegion(const Rect& /*rect*/, const Rect& region) const { return Grown(region, Reach()); }

}  // namespace chalkpane
