#include "chalkpane/filters/point_filter.h"

#include <algorithm>
#include <new>

#include "chalkpane/base/memory_loss.h"
#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/byte_scale.h"
#include "chalkpane/image/unpremultiply_row.h"

namespace chalkpane {
namespace {

// One run as its rows see it. The images are not owned.
struct RowJob {
    PointFilter& filter;
    const Image& source;
    Image& result;
    std::int32_t firstColumn;
    std::int32_t lastColumn;
    bool premultiplied;
};

// Where the depths differ: how a row is reached, what processes it, and how alpha is taken out.
struct Point8 : PixelFormat8 {
    static std::span<Channel> Row(const Image& image, std::int32_t y) { return image.Row8(y); }
    static constexpr auto process = &PointFilter::ProcessRow8;
    static constexpr auto processMask = &PointFilter::ProcessMaskRow8;
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

Columns SpanOfRow(const RowJob& job, std::int32_t y) {
    Columns span{job.firstColumn, job.lastColumn};
    if (!job.filter.RowSpan(y, span.first, span.last)) return {job.firstColumn, job.lastColumn};
    return {std::max(span.first, job.firstColumn), std::min(span.last, job.lastColumn)};
}

template <typename F>
void RunRow(std::int32_t y, void* userData, std::int32_t /*worker*/) {
    const RowJob& job = *static_cast<const RowJob*>(userData);
    const std::size_t channels = job.source.IsMask() ? 1 : 4;
    const auto cut = [channels](auto row, std::int32_t x0, std::int32_t first, std::int32_t last) {
        return row.subspan(static_cast<std::size_t>(std::int64_t{first} - x0) * channels,
                           static_cast<std::size_t>(std::int64_t{last} - first + 1) * channels);
    };
    const auto sourceRow = cut(F::Row(job.source, y), job.source.x0, job.firstColumn, job.lastColumn);
    const auto resultRow = F::Row(job.result, y);
    const Columns span = SpanOfRow(job, y);
    std::copy(sourceRow.begin(), sourceRow.end(), resultRow.begin());
    if (span.IsEmpty()) return;
    const auto pixels = cut(resultRow, job.firstColumn, span.first, span.last);
    if (job.source.IsMask()) {
        (job.filter.*F::processMask)(span.first, span.last, y, pixels);
        return;
    }
    if (job.premultiplied) F::Unpremultiply(cut(sourceRow, job.firstColumn, span.first, span.last), pixels);
    (job.filter.*F::process)(span.first, span.last, y, pixels);
    if (job.premultiplied) job.result.Premultiply(Rect(span.first, y, span.last, y));
}

void RunRows(RowJob& job) {
    const RowFunction row = job.source.GetDepth() == Depth::Eight ? RunRow<Point8> : RunRow<Point14>;
    const Rect& area = job.result;
    if (job.filter.CanRunInParallel()) {
        RunInBands(area.y0, area.y1, area.Width(), row, &job);
        return;
    }
    MultiProcessor::RunInOrder(area.y0, area.y1, row, &job);
}

}  // namespace

void PointFilter::Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* region,
                        bool /*expand*/) {
    result.reset();
    try {
        const bool missed = region != nullptr && !region->Intersects(source);
        const Rect area = region == nullptr || missed ? source.Bounds() : source.Intersection(*region);
        auto made = missed ? std::make_unique<Image>(area, source) : Image::Unwritten(area, source);
        if (!missed && made->ByteSize() > 0) {
            RowJob job{*this, source, *made, made->x0, made->x1, source.IsPremultiplied()};
            BeginRun(source);
            RunRows(job);
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
