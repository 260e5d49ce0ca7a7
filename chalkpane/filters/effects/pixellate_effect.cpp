#include "chalkpane/filters/effects/pixellate_effect.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <limits>
#include <vector>

#include "chalkpane/base/call_widest.h"
#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/work_area.h"
#include "chalkpane/image/image_rows.h"

namespace chalkpane {
namespace {

// The first row or column of the block that holds `place`. In 64 bits: blocks may begin before the plane does.
std::int64_t BlockStart(std::int64_t place, std::int64_t size) {
    const std::int64_t within = place % size;
    return place - (within < 0 ? within + size : within);
}

template <typename F>
struct PixellateJob {
    using Channel = typename F::Channel;

    // So many rows of the largest channel fit into 32 bits.
    static constexpr std::int64_t rowsPerSum = 65536;

    struct Columns {
        std::vector<std::uint32_t> sums;    // of each channel of each column that some block of the result needs
        std::vector<std::uint64_t> totals;  // the same, for blocks higher than `rowsPerSum`
    };

    const Image& source;
    Image& result;
    std::int64_t size;
    std::size_t channels;
    std::int32_t firstColumn;  // of the source, that the leftmost block covers
    std::int64_t firstBlock;   // row of the lowest block
    std::vector<Columns> workers;

    PixellateJob(const Image& from, Image& to, std::int32_t blockSize)
        : source(from),
          result(to),
          size(blockSize),
          channels(static_cast<std::size_t>(ChannelCount(from))),
          firstColumn(static_cast<std::int32_t>(std::max<std::int64_t>(BlockStart(to.x0, size), from.x0))),
          firstBlock(BlockStart(to.y0, size)),
          workers(static_cast<std::size_t>(std::max(MultiProcessor::Instance().ProcessorCount(), 1))) {
        const std::int64_t lastColumn = std::min<std::int64_t>(BlockStart(to.x1, size) + size - 1, from.x1);
        const auto count = static_cast<std::size_t>(lastColumn - firstColumn + 1) * channels;
        for (Columns& columns : workers) {
            columns.sums.resize(count);
            columns.totals.resize(size > rowsPerSum ? count : 0);
        }
    }

    [[nodiscard]] std::int32_t LastBlock() const { return static_cast<std::int32_t>((result.y1 - firstBlock) / size); }

    // Adds up the columns of rows `first` .. `last`, of which there are at most `rowsPerSum`.
    void SumRows(std::int64_t first, std::int64_t last, std::vector<std::uint32_t>& sums) const {
        // So many rows of the largest byte fit into 16 bits.
        constexpr std::int64_t rowsPerWord = 257;
        const bool fitsWords = sizeof(Channel) == 1 && last - first < rowsPerWord;
        CallWidest([&] {
            fitsWords ? SumRowsIn<std::uint16_t>(first, last, sums) : SumRowsIn<std::uint32_t>(first, last, sums);
        });
    }

    // A stretch of columns after the other, whose sums stay in registers over all rows.
    template <typename Sum>
    [[gnu::always_inline]] inline void SumRowsIn(std::int64_t first, std::int64_t last,
                                                 std::vector<std::uint32_t>& sums) const {
        constexpr std::size_t stretch = 64;
        const std::size_t offset = static_cast<std::size_t>(std::int64_t{firstColumn} - source.x0) * channels;
        const Channel* const top = ImageRow<F>(source, static_cast<std::int32_t>(last)).data() + offset;
        const std::size_t rowChannels = static_cast<std::size_t>(source.rowBytes) / sizeof(Channel);
        const std::int64_t rows = last - first + 1;
        std::size_t i = 0;
        for (; i + stretch <= sums.size(); i += stretch) {
            std::array<Sum, stretch> part{};
            const Channel* row = top + i;
            for (std::int64_t y = 0; y < rows; ++y, row += rowChannels)
                for (std::size_t k = 0; k < stretch; ++k) part[k] = static_cast<Sum>(part[k] + row[k]);
            for (std::size_t k = 0; k < stretch; ++k) sums[i + k] = part[k];
        }
        for (; i < sums.size(); ++i) {
            const Channel* channel = top + i;
            sums[i] = 0;
            for (std::int64_t y = 0; y < rows; ++y, channel += rowChannels) sums[i] += *channel;
        }
    }

    // The means of a block, rounded.
    template <std::size_t channelCount, typename Total, typename Sum>
    static void Divide(const Sum* sums, std::size_t columns, std::uint64_t pixels, Channel* mean) {
        const auto count = std::max<Total>(static_cast<Total>(pixels), 1);
        std::array<Total, channelCount> totals{};
        for (std::size_t x = 0; x < columns; ++x)
            for (std::size_t c = 0; c < channelCount; ++c) totals[c] += static_cast<Total>(sums[x * channelCount + c]);
        for (std::size_t c = 0; c < channelCount; ++c) mean[c] = static_cast<Channel>((totals[c] + count / 2) / count);
    }

    template <std::size_t channelCount, typename Sum>
    void Mean(const std::vector<Sum>& sums, std::int64_t first, std::int64_t last, std::int64_t rows,
              Channel* mean) const {
        const Sum* const from = sums.data() + static_cast<std::size_t>(first - firstColumn) * channelCount;
        const auto columns = static_cast<std::size_t>(last - first + 1);
        const auto pixels = static_cast<std::uint64_t>(columns) * static_cast<std::uint64_t>(rows);
        // Narrow divisions are several times as fast, and all but giant blocks are within reach of one.
        constexpr std::uint64_t narrow = std::numeric_limits<std::uint32_t>::max() / (F::fullScale + 1U) / 4;
        if (pixels <= narrow)
            Divide<channelCount, std::uint32_t>(from, columns, pixels, mean);
        else
            Divide<channelCount, std::uint64_t>(from, columns, pixels, mean);
    }

    // Fills the result's row `y` with the means of its blocks, which have `rows` rows of the source.
    template <std::size_t channelCount, typename Sum>
    void PaintChannels(const std::vector<Sum>& sums, std::int32_t y, std::int64_t rows) const {
        Channel* pixel = ImageRow<F>(result, y).data();
        for (std::int64_t x = result.x0; x <= result.x1;) {
            const std::int64_t block = BlockStart(x, size);
            const std::int64_t first = std::max<std::int64_t>(block, source.x0);
            const std::int64_t last = std::min<std::int64_t>(block + size - 1, source.x1);
            std::array<Channel, channelCount> mean;
            Mean<channelCount>(sums, first, last, rows, mean.data());
            const std::int64_t end = std::min<std::int64_t>(block + size - 1, result.x1);
            for (; x <= end; ++x, pixel += channelCount) std::memcpy(pixel, mean.data(), sizeof mean);
        }
    }

    template <typename Sum>
    void Paint(const std::vector<Sum>& sums, std::int32_t y, std::int64_t rows) const {
        channels == 1 ? PaintChannels<1>(sums, y, rows) : PaintChannels<4>(sums, y, rows);
    }

    void BlockRow(std::int32_t index, std::int32_t worker) {
        Columns& columns = workers[static_cast<std::size_t>(worker)];
        const std::int64_t block = firstBlock + index * size;
        const std::int64_t first = std::max<std::int64_t>(block, source.y0);
        const std::int64_t last = std::min<std::int64_t>(block + size - 1, source.y1);
        const auto bottom = static_cast<std::int32_t>(std::max<std::int64_t>(block, result.y0));
        const auto top = static_cast<std::int32_t>(std::min<std::int64_t>(block + size - 1, result.y1));
        if (columns.totals.empty()) {
            SumRows(first, last, columns.sums);
            Paint(columns.sums, bottom, last - first + 1);
        } else {
            std::fill(columns.totals.begin(), columns.totals.end(), 0u);
            for (std::int64_t y = first; y <= last; y += rowsPerSum) {
                SumRows(y, std::min(y + rowsPerSum - 1, last), columns.sums);
                for (std::size_t i = 0; i < columns.sums.size(); ++i) columns.totals[i] += columns.sums[i];
            }
            Paint(columns.totals, bottom, last - first + 1);
        }
        const auto painted = ImageRow<F>(result, bottom);
        for (std::int64_t y = std::int64_t{bottom} + 1; y <= top; ++y)
            std::memcpy(ImageRow<F>(result, static_cast<std::int32_t>(y)).data(), painted.data(), painted.size_bytes());
    }
};

template <typename F>
std::unique_ptr<Image> Pixellated(const Image& source, const Rect& work, std::int32_t size) {
    auto result = Image::Unwritten(work, source);
    PixellateJob<F> job(source, *result, size);
    const auto row = [](std::int32_t block, void* userData, std::int32_t worker) {
        static_cast<PixellateJob<F>*>(userData)->BlockRow(block, worker);
    };
    const std::int64_t pixels = std::int64_t{work.Width()} * std::min(size, work.Height());
    RunInBands(0, job.LastBlock(),
               static_cast<std::int32_t>(std::min<std::int64_t>(pixels, std::numeric_limits<std::int32_t>::max())), row,
               &job);
    return result;
}

}  // namespace

void PixellateEffect::Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* region,
                            bool /*expand*/) {
    if (m_size <= 1) return ApplyAsCopy(source, result);
    ApplyInWorkArea(source, result, region, 0, [&](const Rect& work) {
        return WithFormatOf(source, [&](auto format) { return Pixellated<decltype(format)>(source, work, m_size); });
    });
}

}  // namespace chalkpane
