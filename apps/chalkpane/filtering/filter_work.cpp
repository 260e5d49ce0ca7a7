#include "apps/chalkpane/filtering/filter_work.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

#include "apps/chalkpane/filtering/band_run.h"
#include "apps/chalkpane/filtering/filter_run.h"
#include "apps/chalkpane/filtering/picture_filtering.h"
#include "chalkpane/filters/distort/jitter_effect.h"
#include "cli/nearest_name.h"

namespace chalkpane::app {
namespace {

using picture_io::PictureFormat;
using Parts = std::vector<MemoryPart>;

constexpr double channels = 4;
constexpr double rowsAtOnce = 64;  // are read and written where the picture goes as a whole

// Filters that have pictures of their own beside source and result, in parts of the source, by their names.
struct Lavish {
    std::string_view name;
    double parts;
};
constexpr std::array lavish{Lavish{"Erode/Dilate", 0.6}, Lavish{"Film Grain", 0.75}};

double ExtraOf(const Filter& filter) {
    const auto* const found = std::ranges::find(lavish, filter.Name(), &Lavish::name);
    return found == lavish.end() ? 0.0 : found->parts;
}

struct Sides {
    double width = 0;
    double height = 0;
    [[nodiscard]] double Pixels() const { return width * height; }
};

// What a filter makes of a picture of that size: tried on a small one. A jitter zooms and rotates what is there; what
// the others add at the edges does not depend on the size.
Sides MadeOf(const Filter& filter, const Sides& source, const FilterRun& run) {
    constexpr double side = 256;
    const double scale = side / std::max({source.width, source.height, side});
    const auto small = [scale](double length) {
        return std::max(1, static_cast<std::int32_t>(std::ceil(length * scale)));
    };
    std::vector<std::unique_ptr<Filter>> copy;
    copy.push_back(filter.Clone());
    auto picture = std::make_unique<Image>(small(source.width), small(source.height), PixelType::Colour, Depth::Eight,
                                           AlphaForm::Straight);
    const Sides before{static_cast<double>(picture->Width()), static_cast<double>(picture->Height())};
    FilterRun alone = run;
    alone.region.reset();
    const bool zooms = dynamic_cast<const JitterEffect*>(&filter) != nullptr;
    if (zooms) alone.expand = true;  // it makes the whole, and that is cut then
    const auto made = RunFilters(copy, std::move(picture), alone);
    const double width = made->Width();
    const double height = made->Height();
    if (zooms) return {source.width * width / before.width, source.height * height / before.height};
    return {source.width + width - before.width, source.height + height - before.height};
}

class Estimate {
public:
    Estimate(const PictureWork& work, const FilterOptions& options)
        : m_work(work),
          m_options(options),
          m_words(DepthAskedFor(options).value_or(work.size.hasWords ? Depth::Fourteen : Depth::Eight) ==
                  Depth::Fourteen),
          m_decoded(work.size.Pixels() * channels * (work.size.hasWords ? 2 : 1)),
          m_result{static_cast<double>(work.size.width), static_cast<double>(work.size.height)} {}

    Parts ByBands(std::int32_t rowsAround) const {
        const auto width = static_cast<std::int32_t>(m_work.size.width);
        Parts parts = Kept();
        parts.push_back(Rows(BandRows(std::max(width, 1), rowsAround) + 2 * rowsAround));
        parts.push_back({Packed(), "the file that is written"});
        parts = Larger(Decoding(), std::move(parts));
        parts.push_back({m_work.fileBytes, "the file that is read"});
        return parts;
    }

    Parts AsWhole(std::span<const std::unique_ptr<Filter>> filters) {
        Parts most = Decoding();
        Parts read = Kept();
        read.push_back({BytesOf(m_result), m_work.name});
        most = Larger(std::move(most), std::move(read));
        for (const auto& filter : filters) most = Larger(std::move(most), InFilter(*filter));
        Parts written = m_options.mask.empty() ? Parts() : Kept();
        written.insert(written.begin(), {BytesOf(m_result), m_work.name});
        written.push_back({Packed(), "the file that is written"});
        most = Larger(std::move(most), std::move(written));
        most.push_back({m_work.fileBytes, "the file that is read"});
        most.push_back(Rows(rowsAtOnce));
        if (!m_options.mask.empty())
            most.push_back({m_work.size.Pixels() * (m_words ? 2 : 1), "the mask " + cli::Quoted(m_options.mask)});
        return most;
    }

private:
    // One filter after the other; the result has its size behind it.
    Parts InFilter(const Filter& filter) {
        const Sides before = m_result;
        const Sides made = MadeOf(filter, before, {.expand = m_options.expand, .frame = m_options.frame});
        if (m_options.expand) m_result = {std::max(made.width, before.width), std::max(made.height, before.height)};
        const MemoryPart ofFilter{BytesOf(made), "what " + std::string(filter.Label()) + " makes"};
        Parts most{{BytesOf(before) * (1 + ExtraOf(filter)), m_work.name}, ofFilter};
        if (m_result.Pixels() == made.Pixels() && !dynamic_cast<const JitterEffect*>(&filter)) return most;
        Parts cut{{BytesOf(m_result), m_work.name}, ofFilter};  // to the size of the result
        // Half of the picture at most: of the two the one that gives less is cut to that.
        if (!m_options.region.empty()) cut.push_back({BytesOf(before) / 2, "what lies outside the region"});
        return Larger(std::move(most), std::move(cut));
    }

    [[nodiscard]] double BytesOf(const Sides& sides) const { return sides.Pixels() * channels * (m_words ? 2 : 1); }

    static double Sum(const Parts& parts) {
        double sum = 0;
        for (const MemoryPart& part : parts) sum += part.bytes;
        return sum;
    }
    static Parts Larger(Parts&& a, Parts&& b) { return Sum(a) >= Sum(b) ? std::move(a) : std::move(b); }

    // While it is decoded.
    [[nodiscard]] Parts Decoding() const {
        Parts parts = Kept();
        if (!m_work.size.comesByRows) parts.front().bytes += m_decoded * (m_work.size.decodingCopies - 1);
        return parts;
    }
    // By the reader until the last row is read.
    [[nodiscard]] Parts Kept() const {
        const double kept = m_work.size.comesByRows ? 0.0 : m_decoded;
        return {{kept + m_work.size.keptByDecoder * m_work.size.Pixels(), m_work.name}};
    }
    // PNG and JPEG are packed as rows come, into no more than their channels. For others all rows are gathered first,
    // and what their libraries take besides was measured.
    [[nodiscard]] double Packed() const { return BytesOf(m_result) * PackedPart(m_work.format->format); }
    static double PackedPart(PictureFormat format) {
        switch (format) {
            case PictureFormat::Png:
                return 1;
            case PictureFormat::Jpeg:
                return 0.75;
            case PictureFormat::Gif:
                return 3;
            case PictureFormat::Tiff:
                return 5;
            case PictureFormat::WebP:
                return 6.5;
            case PictureFormat::Avif:
            case PictureFormat::Heic:
                return 15;
            default:
                return 3.5;
        }
    }
    // Of so many rows, on their way into filters, between them and out of them.
    [[nodiscard]] MemoryPart Rows(double rows) const {
        constexpr double forms = 12;
        const double underWay = std::min(rows, m_result.height) * BytesOf({m_result.width, 1}) * forms;
        return {std::min(underWay, 3 * BytesOf(m_result)), "the rows under way"};
    }

    const PictureWork& m_work;
    const FilterOptions& m_options;
    bool m_words;
    double m_decoded;  // bytes of the pixels as they are in the file
    Sides m_result;
};

}  // namespace

std::vector<MemoryPart> MemoryOf(const PictureWork& work, std::span<const std::unique_ptr<Filter>> filters,
                                 const FilterOptions& options) {
    Estimate estimate(work, options);
    const auto rowsAround = RowsAroundFor(filters, options);
    return rowsAround ? estimate.ByBands(*rowsAround) : estimate.AsWhole(filters);
}

}  // namespace chalkpane::app
