#include "chalkpane/filters/distort/distort_filter.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

#include "chalkpane/base/memory_loss.h"
#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/distort/sample_row.h"
#include "chalkpane/filters/row_filter.h"
#include "chalkpane/image/image_rows.h"
#include "chalkpane/image/sampling.h"

namespace chalkpane {
namespace {

struct Columns {
    std::int64_t first;
    std::int64_t last;
};

template <typename Pixel, Pixel (*sample)(const Image&, double, double, std::int32_t)>
void OneByOne(const Image& image, std::span<const float> x, std::span<const float> y, std::int32_t edgeMode,
              std::span<Pixel> pixels) {
    for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = sample(image, x[i], y[i], edgeMode);
}

// Per kind of pixel: the way to read many between the pixels of an image, and to read one at a pixel.
struct Colour8 {
    using Pixel = Pixel8;
    static constexpr auto Between = SampleRow8;
    static Pixel At(const Image& image, std::int32_t x, std::int32_t y, std::int32_t edgeMode) {
        return image.GetPixelEdge8(x, y, edgeMode);
    }
};
struct Colour14 {
    using Pixel = Pixel14;
    static constexpr auto Between = SampleRow14;
    static Pixel At(const Image& image, std::int32_t x, std::int32_t y, std::int32_t edgeMode) {
        return image.GetPixelEdge14(x, y, edgeMode);
    }
};
struct Mask8 {
    using Pixel = std::uint8_t;
    static constexpr auto Between = OneByOne<Pixel, SampleMaskBilinear8>;
    static Pixel At(const Image& image, std::int32_t x, std::int32_t y, std::int32_t edgeMode) {
        return image.GetMaskEdge8(x, y, edgeMode);
    }
};
struct Mask14 {
    using Pixel = std::uint16_t;
    static constexpr auto Between = OneByOne<Pixel, SampleMask14>;  // DIFFERS: the nearest pixel below
    static Pixel At(const Image& image, std::int32_t x, std::int32_t y, std::int32_t edgeMode) {
        return image.GetMaskEdge14(x, y, edgeMode);
    }
};

// One run as its rows see it. The images are not owned.
struct DistortJob {
    const DistortFilter& filter;
    const Image& source;
    Image& result;
    std::int32_t edgeMode;

    [[nodiscard]] Columns SpanOfRow(std::int32_t y) const {
        std::int32_t first = result.x0;
        std::int32_t last = result.x1;
        if (!filter.RowSpan(y, first, last)) return {result.x0, result.x1};
        return {std::max(first, result.x0), std::min(last, result.x1)};
    }

    // Columns `first` .. `last` as they stand in the source; where there is no source they stay blank.
    void Copy(std::int32_t y, std::int64_t first, std::int64_t last) const {
        first = std::max<std::int64_t>(first, source.x0);
        last = std::min<std::int64_t>(last, source.x1);
        if (first > last || y < source.y0 || y > source.y1) return;
        const auto column = static_cast<std::int32_t>(first);
        std::memcpy(result.Address(column, y), source.Address(column, y),
                    static_cast<std::size_t>(last - first + 1) * static_cast<std::size_t>(source.pixelBytes));
    }

    template <typename Kind, bool fast>
    void Row(std::int32_t y) const {
        const Columns span = SpanOfRow(y);
        if (span.first > span.last) return Copy(y, result.x0, result.x1);
        Copy(y, result.x0, span.first - 1);
        Copy(y, span.last + 1, result.x1);
        auto* pixel = reinterpret_cast<typename Kind::Pixel*>(result.Address(static_cast<std::int32_t>(span.first), y));
        constexpr std::int64_t block = 256;
        std::array<float, block> sourceX{};
        std::array<float, block> sourceY{};
        for (std::int64_t x = span.first; x <= span.last; x += block) {
            const auto count = static_cast<std::size_t>(std::min(block, span.last - x + 1));
            const auto placesX = std::span(sourceX).first(count);
            const auto placesY = std::span(sourceY).first(count);
            filter.MapRow(static_cast<std::int32_t>(x), y, placesX, placesY);
            const std::span<typename Kind::Pixel> pixels(pixel, count);
            // KEEP: truncated, not rounded: left of 0 the nearest pixel is the one to the right.
            if constexpr (fast)
                for (std::size_t i = 0; i < count; ++i)
                    pixels[i] = Kind::At(source, Truncated(sourceX[i]), Truncated(sourceY[i]), edgeMode);
            else
                Kind::Between(source, placesX, placesY, edgeMode, pixels);
            pixel += count;
        }
    }

    template <typename Kind, bool fast>
    static void RunRow(std::int32_t y, void* userData, std::int32_t /*worker*/) {
        static_cast<const DistortJob*>(userData)->Row<Kind, fast>(y);
    }
    template <typename Kind>
    static RowFunction RowOf(bool fast) {
        return fast ? RunRow<Kind, true> : RunRow<Kind, false>;
    }
    [[nodiscard]] RowFunction ChosenRow(bool fast) const {
        if (source.IsMask()) return source.GetDepth() == Depth::Eight ? RowOf<Mask8>(fast) : RowOf<Mask14>(fast);
        return source.GetDepth() == Depth::Eight ? RowOf<Colour8>(fast) : RowOf<Colour14>(fast);
    }
};

}  // namespace

void DistortFilter::Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
                          bool expand) {
    result.reset();
    try {
        const bool missed = source.ByteSize() == 0 || (region != nullptr && !region->Intersects(source));
        Rect area = source.Bounds();
        if (!missed) {
            MapRect(area, source.Bounds(), expand);
            if (region != nullptr) area = area.Intersection(*region);
        }
        auto made = std::make_unique<Image>(area, source);
        if (!missed && made->ByteSize() > 0) {
            DistortJob job{*this, source, *made, m_edgeMode};
            BeginRun(source);
            RunInBands(made->y0, made->y1, made->Width(), job.ChosenRow(fast), &job);
            EndRun();
        }
        result = std::move(made);
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
        result.reset();
    }
}

void DistortFilter::MapRect(Rect& out, const Rect& rect, bool /*expand*/) const { out = InputRegion(rect, rect); }

void DistortFilter::MapRow(std::int32_t x, std::int32_t y, std::span<float> sourceX, std::span<float> sourceY) const {
    for (std::size_t i = 0; i < sourceX.size(); ++i, ++x) MapPoint(x, y, sourceX[i], sourceY[i]);
}

void DistortFilter::BeginRun(const Image& /*source*/) { Prepare(); }

bool DistortFilter::RowSpan(std::int32_t /*y*/, std::int32_t& /*first*/, std::int32_t& /*last*/) const { return false; }

}  // namespace chalkpane
