#include "apps/chalkpane/filtering/band_run.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "apps/chalkpane/filtering/picture_image.h"
#include "apps/chalkpane/filtering/rows_ahead.h"

namespace chalkpane::app {
namespace {

// Filters that make a row of the rows around it alone, by their names, and how many rows beyond those that they say
// themselves must be there for a region.
struct BandFilter {
    std::string_view name;
    std::int32_t more = 0;
};
constexpr std::array bandFilters{
    BandFilter{"Softener"},         BandFilter{"Smart Blur"},          BandFilter{"Median Filter"},
    BandFilter{"Erode/Dilate"},     BandFilter{"Edge Detect"},         BandFilter{"AddSubtractCC"},
    BandFilter{"BlackAndWhite"},    BandFilter{"BrightnessContrast"},  BandFilter{"ChromaCorrect"},
    BandFilter{"ColourDodge"},      BandFilter{"ComponentCorrect"},    BandFilter{"HueRotate"},
    BandFilter{"InvertColor"},      BandFilter{"Luma Graph"},          BandFilter{"Remove Red-eye"},
    BandFilter{"RGBChannelMixer"},  BandFilter{"TintFilter"},          BandFilter{"Solarize Effect"},
    BandFilter{"Posterize Effect"}, BandFilter{"Oil Effect", 5},       BandFilter{"Emboss Effect", 1},
    BandFilter{"Halftone"},         BandFilter{"Pixellate Effect", 10}};

constexpr std::int32_t mostRowsAround = 256;  // more, and the rows made twice cost more than the bands save

// The rows from `topY` down that are wanted still, with those that were read put below them.
std::unique_ptr<Image> WithRowsBelow(const Image* kept, const picture_io::AnyPicture& rows, std::int32_t topY,
                                     std::int32_t firstY, std::int32_t width, Depth depth) {
    const std::int32_t count = std::visit([](const auto& any) { return any.height; }, rows);
    auto image = std::make_unique<Image>(
        Image::Colour(Rect(0, firstY - count + 1, width - 1, topY), depth, AlphaForm::Straight));
    if (kept != nullptr) image->CopyRegion(*kept, Rect(0, firstY + 1, width - 1, topY));
    FillRows(*image, rows, firstY);
    return image;
}

}  // namespace

std::optional<std::int32_t> RowsAround(const Filter& filter) {
    const auto* const found = std::ranges::find(bandFilters, filter.Name(), &BandFilter::name);
    if (found == bandFilters.end()) return std::nullopt;
    const Rect pixel(0, 0, 0, 0);
    const Rect needed = filter.InputRegion(pixel, pixel);
    return std::max({0, -needed.y0, needed.y1}) + found->more;
}

std::optional<std::int32_t> RowsAround(std::span<const std::unique_ptr<Filter>> filters) {
    std::int32_t rows = 0;
    for (const auto& filter : filters) {
        const auto ofFilter = RowsAround(*filter);
        if (!ofFilter) return std::nullopt;
        rows += *ofFilter;
        if (rows > mostRowsAround) return std::nullopt;
    }
    return rows;
}

std::int32_t BandRows(std::int32_t width, std::int32_t rowsAround) {
    constexpr std::int32_t bandPixels = 1 << 17;
    return std::max({1, bandPixels / width, 4 * rowsAround});
}

bool RunByBands(picture_io::RowReader& reader, std::span<const std::unique_ptr<Filter>> filters, const FilterRun& run,
                Depth depth, std::int32_t rowsAround, const TakeBand& take) {
    const std::int32_t width = reader.Width();
    const std::int32_t bandRows = BandRows(width, rowsAround);
    const std::int32_t highest = reader.Height() - 1;
    std::int32_t unread = highest;  // the first row that is not in the window
    std::unique_ptr<Image> window;
    RowsAhead ahead(reader, bandRows);
    for (std::int32_t top = highest; top >= 0; top -= bandRows) {
        const Rect band(0, std::max(0, top - bandRows + 1), width - 1, top);
        const std::int32_t first = std::min(highest, band.y1 + rowsAround);
        while (unread >= std::max(0, band.y0 - rowsAround)) {
            window = WithRowsBelow(window.get(), ahead.Take(), first, unread, width, depth);
            unread = window->y0 - 1;
        }
        const auto input = window->Convert(Rect(0, window->y0, width - 1, first), depth);
        const auto made = RunFilters(filters, *input, run);
        RequireNoLoss();
        const auto cut = made->Convert(band, depth);
        SetAlphaForm(*cut, AlphaForm::Straight);
        if (!take(*cut)) return false;
    }
    return true;
}

}  // namespace chalkpane::app
