#include "apps/chalkpane/filtering/picture_filtering.h"

#include <algorithm>
#include <string>
#include <utility>

#include "apps/chalkpane/filtering/band_run.h"
#include "apps/chalkpane/filtering/filter_run.h"
#include "apps/chalkpane/filtering/filter_texts.h"
#include "apps/chalkpane/filtering/picture_image.h"
#include "apps/chalkpane/presets/preset.h"
#include "apps/chalkpane/values/value_parsing.h"
#include "chalkpane/image/image_rows.h"
#include "cli/error.h"
#include "cli/file_bytes.h"
#include "cli/nearest_name.h"
#include "picture_io/row_reader.h"

namespace chalkpane::app {
namespace {

using cli::Error;

std::string SizeText(const Rect& picture) {
    return std::to_string(picture.Width()) + " x " + std::to_string(picture.Height());
}

// From picture pixels, y downwards from the top row, to the plane.
Rect RegionFromText(const std::string& text, const Rect& picture) {
    std::vector<std::int32_t> numbers;
    try {
        numbers = ParseIntegers(text, 4);
    } catch (const Error& error) {
        throw Error("--region", {}, error.what());
    }
    if (numbers[0] > numbers[2] || numbers[1] > numbers[3])
        throw Error("--region", {}, cli::Quoted(text) + " ends before it begins; it goes x0,y0,x1,y1");
    const std::int64_t height = picture.Height();
    if (numbers[0] < 0 || numbers[1] < 0 || numbers[2] >= picture.Width() || numbers[3] >= height)
        throw Error("--region", {},
                    cli::Quoted(text) + " does not lie within the picture of " + SizeText(picture) + " pixels");
    const auto fromBottom = [height](std::int32_t y) { return static_cast<std::int32_t>(height - 1 - y); };
    return {numbers[0], fromBottom(numbers[3]), numbers[2], fromBottom(numbers[1])};
}

// By rows, so that the picture of a mask is never there in all its channels as an image, too.
std::unique_ptr<Image> ReadMaskRows(const std::string& file, Depth depth) {
    const auto bytes = cli::ReadFileBytes(file);
    picture_io::RowReader reader(bytes, picture_io::Depths::Any, file);
    auto mask = std::make_unique<Image>(Image::Mask(reader.Width(), reader.Height(), depth));
    constexpr std::int32_t rowsAtOnce = 64;
    for (std::int32_t top = mask->y1; top >= 0; top -= rowsAtOnce) {
        const auto part = MaskOf(reader.Read(rowsAtOnce), depth);
        for (std::int32_t row = 0; row < part->Height(); ++row)
            WithFormatOf(*part, [&]<typename F>(F) {
                std::ranges::copy(ImageRow<F>(*part, part->y1 - row), ImageRow<F>(*mask, top - row).begin());
            });
    }
    return mask;
}

}  // namespace

std::vector<std::unique_ptr<Filter>> FiltersOf(const FilterOptions& options, const FrameRateClock& clock) {
    if (options.preset.empty() && options.apply.empty())
        throw Error("there is no filter to run; name one with --apply or give a --preset");
    auto filters =
        options.preset.empty() ? std::vector<std::unique_ptr<Filter>>() : FiltersOfPreset(options.preset, clock);
    for (const std::string& text : options.apply) filters.push_back(FilterFromText(text));
    for (const auto& filter : filters) TakeValues(*filter);
    return filters;
}

std::optional<Depth> DepthAskedFor(const FilterOptions& options) {
    if (options.bits == 0) return std::nullopt;
    return DepthOfBits(options.bits);
}

std::optional<std::int32_t> RowsAroundFor(std::span<const std::unique_ptr<Filter>> filters,
                                          const FilterOptions& options) {
    const bool isPlain = options.region.empty() && options.mask.empty() && !options.expand;
    return isPlain ? RowsAround(filters) : std::nullopt;
}

std::vector<std::unique_ptr<Filter>> ActiveFiltersOf(const FilterOptions& options, FrameRateClock& clock) {
    clock.StandAt(options.frame);
    auto filters = FiltersOf(options, clock);
    std::erase_if(filters, [](const auto& filter) { return !filter->m_active; });
    return filters;
}

std::unique_ptr<Image> ReadMask(const FilterOptions& options, const Rect& picture, Depth depth) {
    if (options.mask.empty()) return nullptr;
    auto mask = ReadMaskRows(options.mask, depth);
    if (mask->Bounds() != picture)
        throw Error(options.mask, {}, "is " + SizeText(*mask) + " pixels, but the picture is " + SizeText(picture));
    return mask;
}

FilterRun RunOf(const FilterOptions& options, const Rect& picture, std::int32_t frame) {
    FilterRun run{.fast = options.fast, .expand = options.expand, .frame = frame};
    if (!options.region.empty()) run.region = RegionFromText(options.region, picture);
    return run;
}

std::unique_ptr<Image> Filtered(std::unique_ptr<Image> source, std::span<const std::unique_ptr<Filter>> filters,
                                const FilterOptions& options, std::int32_t frame) {
    const FilterRun run = RunOf(options, *source, frame);
    const auto mask = ReadMask(options, *source, source->GetDepth());
    auto before = mask ? std::make_unique<Image>(*source) : nullptr;
    auto picture = RunFilters(filters, std::move(source), run);
    return mask ? MixByMask(std::move(before), *picture, *mask) : std::move(picture);
}

}  // namespace chalkpane::app
