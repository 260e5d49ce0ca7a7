#include "chalkpane/filters/neighbourhood/dilate_filter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/blurs/softener.h"
#include "chalkpane/filters/luma.h"
#include "chalkpane/filters/work_area.h"

namespace chalkpane {
namespace {

// Far beyond what a control offers.
constexpr double largestRadius = 10000.0;

using ByteTable = std::array<std::uint8_t, 256>;

// KEEP: the lower threshold is asked first, so with the two crossed everything below the lower one is black.
ByteTable ThresholdTable(std::int32_t lower, std::int32_t upper) {
    ByteTable table;
    for (std::int32_t v = 0; v < 256; ++v)
        table[static_cast<std::size_t>(v)] = static_cast<std::uint8_t>(v < lower ? 0 : (v >= upper ? 255 : v));
    return table;
}

ByteTable SlopeTable(std::int64_t softness) {
    const std::int64_t low = 127 - softness;
    const std::int64_t high = 127 + softness;
    ByteTable table;
    for (std::int64_t v = 0; v < 256; ++v) {
        std::int64_t level = 0;
        if (v > high)
            level = 255;
        else if (v > low)
            level = (v - low) * 255 / (high - low);
        table[static_cast<std::size_t>(v)] = static_cast<std::uint8_t>(level);
    }
    return table;
}

// Calls `row` with each row of an image, on the workers.
template <typename Row>
void ForEachRow(const Rect& area, Row row) {
    const auto call = [](std::int32_t y, void* userData, std::int32_t /*worker*/) {
        (*static_cast<const Row*>(userData))(y);
    };
    RunInBands(area.y0, area.y1, area.Width(), call, &row);
}

// One channel of luma between the thresholds.
Image LumaMask(const Image& source, const Rect& work, const ByteTable& table) {
    Image mask = Image::Mask(work, Depth::Eight);
    ForEachRow(mask, [&](std::int32_t y) {
        const auto* pixel = reinterpret_cast<const std::uint8_t*>(source.Address(mask.x0, y));
        for (auto& level : mask.Row8(y)) {
            level =
                table[source.IsMask() ? pixel[0] : static_cast<std::uint8_t>(LumaByte(pixel[2], pixel[1], pixel[0]))];
            pixel += source.pixelBytes;
        }
    });
    return mask;
}

// Beyond the blurred mask there is nothing.
void StoreGrey(const Image& blurred, const ByteTable& table, Image& result) {
    ForEachRow(result, [&](std::int32_t y) {
        const bool isBlurred = y >= blurred.y0 && y <= blurred.y1;
        const auto levels = isBlurred ? blurred.Row8(y) : std::span<std::uint8_t>();
        auto* out = result.Row8(y).data();
        for (std::int64_t x = result.x0; x <= result.x1; ++x, out += result.pixelBytes) {
            const auto column = static_cast<std::size_t>(x - blurred.x0);
            const std::uint8_t level = table[column < levels.size() ? levels[column] : 0];
            out[0] = level;
            if (result.IsMask()) continue;
            out[1] = out[2] = level;
            out[3] = 255;
        }
    });
}

}  // namespace

std::unique_ptr<Image> DilateFilter::Matte(const Image& source, const Rect& work, bool fast, const Rect* region,
                                           bool expand) const {
    const double radius = std::min(m_radius, largestRadius);
    const Image mask = LumaMask(source, work, ThresholdTable(m_lowerThreshold, m_upperThreshold));
    std::unique_ptr<Image> blurred;
    Softener(radius).Apply(mask, blurred, fast, region, expand);
    if (!blurred) throw std::bad_alloc();
    const std::int32_t growth = expand ? static_cast<std::int32_t>(std::ceil(radius)) : 0;
    auto result = Image::Unwritten(Grown(work, growth), source);
    StoreGrey(*blurred, SlopeTable(m_softness), *result);
    return result;
}

void DilateFilter::Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
                         bool expand) {
    if (!(m_radius > 0.0)) return ApplyAsCopy(source, result);
    ApplyInWorkArea(source, result, region, 0, [&](const Rect& work) {
        return source.GetDepth() == Depth::Eight
                   ? Matte(source, work, fast, region, expand)
                   : Matte(*source.Convert(Rect(), Depth::Eight), work, fast, region, expand);
    });
}

Rect DilateFilter::InputRegion(const Rect& /*rect*/, const Rect& region) const {
    return Grown(region, static_cast<std::int32_t>(std::clamp(m_radius, 0.0, largestRadius)));
}
Rect DilateFilter::OutputRegion(const Rect& rect, const Rect& region) const { return InputRegion(rect, region); }

}  // namespace chalkpane
