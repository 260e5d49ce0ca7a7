#include "chalkpane/filters/point_filter.h"

#include <algorithm>
#include <new>

#include "chalkpane/base/memory_loss.h"
#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/byte_scale.h"
#include "chalkpane/filters/point_rows.h"
#include "chalkpane/image/unpremultiply_row.h"

namespace chalkpane {
namespace {

// One run as its rows see it. Nothing is owned; the source may be the result.
struct RowJob {
    std::span<PointFilter* const> filters;
    const Image& source;
    Image& result;
    std::int32_t firstColumn;
    std::int32_t lastColumn;
};

// Where the depths differ: how a row is reached, what processes it, and how alpha is taken out.
struct Point8 : PixelFormat8 {
    static std::span<Channel> Row(const Image& image, std::int32_t y) { return image.Row8(y); }
    static constexpr auto process = &PointFilter::ProcessRow8;
    static constexpr auto processMask = &PointFilter::ProcessMaskRow8;
    // Both may be the same.
    static void Unpremultiply(std::span<const Channel> input, std::span<Channel> output) {
        UnpremultiplyRow8(static_cast<std::int32_t>(input.size() / 4), input, output);
    }
};

struct Point14 : PixelFormat14 {
    static std::span<Channel> Row(const Image& image, std::int32_t y) { return image.Row14(y); }
    static constexpr auto process = &PointFilter::ProcessRow16;
    static constexpr auto processMask = &PointFilter::ProcessMaskRow16;
    // DIFFERS: alpha 0 does not clear colour, it drives it to full scale; 8 bits take the reciprocal 0.
    static void Unpremultiply(std::span<const Channel> input, std::span<Channel> output) {
        for (std::size_t i = 0; i + 3 < input.size(); i += 4) {
            const std::int32_t alpha = input[i + 3];
            const double factor = alpha < fullScale ? static_cast<float>(16383.0 / std::max(alpha, 1)) : 1.0;
            for (std::size_t channel = i; channel < i + 3; ++channel) {
                const auto rounded = static_cast<std::int32_t>(input[channel] * factor + 0.5);
                output[channel] =
                    alpha < fullScale ? static_cast<Channel>(std::min(rounded, fullScale)) : input[channel];
            }
            output[i + 3] = input[i + 3];
        }
    }
};

template <typename F>
void ProcessEachPixel(PointFilter& filter, std::int32_t firstX, std::int32_t y, std::span<typename F::Channel> pixels) {
    using Channel = typename F::Channel;
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
        const std::int32_t x = firstX + static_cast<std::int32_t>(i / 4);
        const auto pixel = pixels.subspan(i, 4);
        float b = ToByteScale<F>(pixel[0]);
        float g = ToByteScale<F>(pixel[1]);
        float r = ToByteScale<F>(pixel[2]);
        float a = ToByteScale<F>(pixel[3]);
        filter.ProcessPixel(x, y, a, r, g, b);
        pixel[0] = static_cast<Channel>(FromByteScale<F>(b));
        pixel[1] = static_cast<Channel>(FromByteScale<F>(g));
        pixel[2] = static_cast<Channel>(FromByteScale<F>(r));
        pixel[3] = static_cast<Channel>(FromByteScale<F>(a));
    }
}

struct Columns {
    std::int32_t first;
    std::int32_t last;
    [[nodiscard]] bool IsEmpty() const { return first > last; }
};

Columns SpanOfRow(const PointFilter& filter, const RowJob& job, std::int32_t y) {
    Columns span{job.firstColumn, job.lastColumn};
    if (!filter.RowSpan(y, span.first, span.last)) return {job.firstColumn, job.lastColumn};
    return {std::max(span.first, job.firstColumn), std::min(span.last, job.lastColumn)};
}

// Pixels first .. last of a row that begins at x0.
template <typename Row>
Row Cut(Row row, std::size_t channels, std::int32_t x0, std::int32_t first, std::int32_t last) {
    return row.subspan(static_cast<std::size_t>(std::int64_t{first} - x0) * channels,
                       static_cast<std::size_t>(std::int64_t{last} - first + 1) * channels);
}

template <typename F>
void ProcessRow(PointFilter& filter, const RowJob& job, std::int32_t y) {
    const Columns span = SpanOfRow(filter, job, y);
    if (span.IsEmpty()) return;
    const std::size_t channels = job.source.IsMask() ? 1 : 4;
    const auto pixels = Cut(F::Row(job.result, y), channels, job.firstColumn, span.first, span.last);
    if (job.source.IsMask()) {
        (filter.*F::processMask)(span.first, span.last, y, pixels);
        return;
    }
    const bool premultiplied = job.source.IsPremultiplied();
    if (premultiplied) F::Unpremultiply(pixels, pixels);
    (filter.*F::process)(span.first, span.last, y, pixels);
    if (premultiplied) job.result.Premultiply(Rect(span.first, y, span.last, y));
}

template <typename F>
void RunRow(std::int32_t y, void* userData, std::int32_t /*worker*/) {
    const RowJob& job = *static_cast<const RowJob*>(userData);
    const std::size_t channels = job.source.IsMask() ? 1 : 4;
    const auto from = Cut(F::Row(job.source, y), channels, job.source.x0, job.firstColumn, job.lastColumn);
    const auto to = F::Row(job.result, y);
    if (from.data() != to.data()) std::copy(from.begin(), from.end(), to.begin());
    for (PointFilter* const filter : job.filters) ProcessRow<F>(*filter, job, y);
}

}  // namespace

void RunPointRows(std::span<PointFilter* const> filters, const Image& source, Image& result) {
    RowJob job{filters, source, result, result.x0, result.x1};
    const RowFunction row = source.GetDepth() == Depth::Eight ? RunRow<Point8> : RunRow<Point14>;
    const bool inParallel = std::ranges::all_of(filters, &PointFilter::CanRunInParallel);
    if (inParallel) return RunInBands(result.y0, result.y1, result.Width(), row, &job);
    MultiProcessor::RunInOrder(result.y0, result.y1, row, &job);
}

void PointFilter::Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* region,
                        bool /*expand*/) {
    result.reset();
    try {
        const bool missed = region != nullptr && !region->Intersects(source);
        const Rect area = region == nullptr || missed ? source.Bounds() : source.Intersection(*region);
        auto made = missed ? std::make_unique<Image>(area, source) : Image::Unwritten(area, source);
        if (!missed && made->ByteSize() > 0) {
            PointFilter* const self = this;
            BeginRun(source);
            RunPointRows({&self, 1}, source, *made);
            EndRun();
        }
        result = std::move(made);
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
        result.reset();
    }
}

void PointFilter::ProcessRow16(std::int32_t firstX, std::int32_t /*lastX*/, std::int32_t y,
                               std::span<std::uint16_t> pixels) {
    ProcessEachPixel<Point14>(*this, firstX, y, pixels);
}

void PointFilter::ProcessRow8(std::int32_t firstX, std::int32_t /*lastX*/, std::int32_t y,
                              std::span<std::uint8_t> pixels) {
    ProcessEachPixel<Point8>(*this, firstX, y, pixels);
}

void PointFilter::ProcessMaskRow16(std::int32_t /*firstX*/, std::int32_t /*lastX*/, std::int32_t /*y*/,
                                   std::span<std::uint16_t> /*pixels*/) {}

void PointFilter::ProcessMaskRow8(std::int32_t /*firstX*/, std::int32_t /*lastX*/, std::int32_t /*y*/,
                                  std::span<std::uint8_t> /*pixels*/) {}

void PointFilter::BeginRun(const Image& /*source*/) { Prepare(); }

void PointFilter::ProcessPixel(std::int32_t /*x*/, std::int32_t /*y*/, float& /*a*/, float& /*r*/, float& /*g*/,
                               float& /*b*/) {}

bool PointFilter::RowSpan(std::int32_t /*y*/, std::int32_t& /*first*/, std::int32_t& /*last*/) const { return false; }

}  // namespace chalkpane
