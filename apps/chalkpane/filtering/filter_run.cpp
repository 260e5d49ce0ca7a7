#include "apps/chalkpane/filtering/filter_run.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "apps/chalkpane/filtering/picture_image.h"
#include "apps/chalkpane/filtering/sparing_run.h"
#include "chalkpane/base/multi_processor.h"
#include "chalkpane/base/random.h"
#include "chalkpane/filters/blurs/threshold_blur.h"
#include "chalkpane/filters/distort/marble_effect.h"
#include "chalkpane/filters/distort/turbulence_effect.h"
#include "chalkpane/filters/paint_colour.h"
#include "chalkpane/filters/point_filter.h"
#include "chalkpane/filters/row_chain.h"
#include "chalkpane/image/image_rows.h"
#include "chalkpane/image/picture_pool.h"
#include "chalkpane/image/pixel_format.h"

namespace chalkpane::app {
namespace {

// Small seeds next to each other would draw nearly the same numbers.
void SeedForFrame(std::int32_t frame) {
    constexpr std::uint32_t spread = 2654435761U;  // 2^32 over the golden ratio
    SeedRandom(static_cast<std::uint32_t>(frame) * spread + spread);
}

bool IsOpaque(const Image& image) {
    return WithFormatOf(image, [&image]<typename F>(F) {
        for (std::int32_t y = image.y0; y <= image.y1; ++y) {
            const auto row = ImageRow<F>(image, y);
            for (std::size_t i = 3; i < row.size(); i += 4)
                if (row[i] != F::fullScale) return false;
        }
        return true;
    });
}

// The picture in that form: with the pixels as they are where it has the form already, or is opaque, where both forms
// are alike; otherwise with others, which are its own.
std::unique_ptr<Image> InForm(std::unique_ptr<Image> image, AlphaForm form) {
    if (image->GetAlphaForm() == form) return image;
    if (IsOpaque(*image)) {
        image->DeclareAlphaForm(form);
        return image;
    }
    image = Unshared(std::move(image));
    SetAlphaForm(*image, form);
    return image;
}

AlphaForm FormFor(const Filter& filter) {
    return dynamic_cast<const PointFilter*>(&filter) != nullptr ? AlphaForm::Straight : AlphaForm::Premultiplied;
}

// What the filter makes of the whole input, or of the region, with whatever bounds it gives it.
std::unique_ptr<Image> Applied(Filter& filter, const Image& input, const FilterRun& run) {
    auto result = std::make_unique<Image>(input);  // stays when the filter stores none
    filter.Attach(&input, run.frame, run.time, nullptr);
    filter.Advance(&input, run.frame, 0, 0, 0, 0);
    filter.BeginStep();
    std::optional<Rect> region = run.region;
    if (region) region = filter.InputRegion(input, *region);  // its edges come out right only with what is around it
    filter.Apply(input, result, run.fast, region ? &*region : nullptr, run.expand);
    filter.EndStep();
    filter.Detach();
    if (!result) throw std::bad_alloc();
    return result;
}

// The same at the picture's depth, from a picture that the caller wants back in the form that the filter likes, or,
// with null, not at all.
std::unique_ptr<Image> AppliedTo(Filter& filter, std::unique_ptr<Image> source, const FilterRun& run,
                                 std::unique_ptr<Image>* back) {
    const Depth depth = source->GetDepth();
    const Depth working = filter.WorkingDepth(depth);
    const AlphaForm form = FormFor(filter);
    std::unique_ptr<Image> input;
    if (working == depth) {
        input = InForm(std::move(source), form);
        if (back != nullptr) *back = std::make_unique<Image>(*input);
    } else {
        input = InForm(source->Convert(Rect(), working), form);
        if (back != nullptr) *back = InForm(std::move(source), form);
        source.reset();
    }
    auto result = Applied(filter, *input, run);
    input.reset();
    return result->Convert(Rect(), depth);
}

// How many filters at the front can go row by row together over a picture of that depth.
std::size_t RowFiltersIn(std::span<const std::unique_ptr<Filter>> filters, Depth depth) {
    const auto end =
        std::ranges::find_if(filters, [depth](const auto& filter) { return !RowChain::Takes(*filter, depth); });
    return static_cast<std::size_t>(end - filters.begin());
}

// The same as one after the other, which all want straight colours.
std::unique_ptr<Image> RunByRows(std::span<const std::unique_ptr<Filter>> filters, std::unique_ptr<Image> source,
                                 const FilterRun& run) {
    auto picture = InForm(std::move(source), AlphaForm::Straight);
    RowChain rows;
    const auto runRows = [&] {
        if (!rows.Run(picture)) throw std::bad_alloc();
    };
    for (const auto& filter : filters) {
        if (rows.IsFull()) runRows();
        filter->Attach(picture.get(), run.frame, run.time, nullptr);
        filter->Advance(picture.get(), run.frame, 0, 0, 0, 0);
        rows.Add(*filter);
    }
    runRows();
    for (const auto& filter : filters) filter->Detach();
    return picture;
}

// The parts of `whole` that lie outside `hole`, which cuts it: above, below, left and right.
std::array<Rect, 4> Around(const Rect& whole, const Rect& hole) {
    return {Rect(whole.x0, hole.y1 + 1, whole.x1, whole.y1), Rect(whole.x0, whole.y0, whole.x1, hole.y0 - 1),
            Rect(whole.x0, hole.y0, hole.x0 - 1, hole.y1), Rect(hole.x1 + 1, hole.y0, whole.x1, hole.y1)};
}

void CopyOutside(const Rect& region, const Image& source, Image& picture) {
    const Rect hole = region.Intersection(source);
    if (!hole.IsValid()) return picture.CopyRegion(source, source);
    for (const Rect& part : Around(source, hole))
        if (part.x0 <= part.x1 && part.y0 <= part.y1) picture.CopyRegion(source, part);
}

std::unique_ptr<Image> WithBounds(std::unique_ptr<Image> made, const Rect& bounds) {
    if (made->Bounds() == bounds) return made;
    auto picture = std::make_unique<Image>(bounds, *made);
    picture->CopyRegion(*made, bounds);
    return picture;
}

void ClearRegion(Image& image, const Rect& region) {
    for (std::int32_t y = region.y0; y <= region.y1; ++y)
        std::memset(image.Address(region.x0, y), 0,
                    static_cast<std::size_t>(region.Width()) * static_cast<std::size_t>(image.pixelBytes));
}

// With the region from what was made, and all else from the source, whose pixels are used where nobody else has them.
std::unique_ptr<Image> WithRegion(std::unique_ptr<Image> source, const Image& made, const Rect& region) {
    source = Unshared(std::move(source));
    const Rect hole = region.Intersection(*source);
    if (hole.Width() < 1 || hole.Height() < 1) return source;
    if (!made.Contains(hole)) ClearRegion(*source, hole);
    source->CopyRegion(made, hole);
    return source;
}

using Pieces = std::vector<std::unique_ptr<Image>>;

void CutOut(const Image& image, const Rect& part, Pieces& pieces) {
    const Rect cut = part.Intersection(image);
    if (cut.Width() < 1 || cut.Height() < 1) return;
    pieces.push_back(std::make_unique<Image>(cut, image));
    pieces.back()->CopyRegion(image, cut);
}

// With the region, and what lies beyond the source, from what was made, and all else from the source. The one that
// gives less is reduced to that before there is a third picture.
std::unique_ptr<Image> WithBoth(std::unique_ptr<Image> source, std::unique_ptr<Image> made, const Rect& bounds,
                                const Rect& region) {
    const Rect own = source->Bounds();
    const Rect hole = region.Intersection(own);
    const bool hasHole = hole.Width() > 0 && hole.Height() > 0;
    const auto pixels = [](const Rect& rect) { return std::int64_t{rect.Width()} * rect.Height(); };
    Pieces pieces;
    if (hasHole && 2 * pixels(hole) > pixels(own)) {
        for (const Rect& part : Around(own, hole)) CutOut(*source, part, pieces);
        source.reset();
    } else {
        if (hasHole) CutOut(*made, hole, pieces);
        for (const Rect& part : Around(bounds, own)) CutOut(*made, part, pieces);
        made.reset();
        source = Unshared(std::move(source));
        if (hasHole) ClearRegion(*source, hole);
    }
    auto picture = WithBounds(source ? std::move(source) : std::move(made), bounds);
    for (const auto& piece : pieces) picture->CopyRegion(*piece, *piece);
    return picture;
}

std::unique_ptr<Image> RunInRegion(Filter& filter, std::unique_ptr<Image> source, const FilterRun& run,
                                   const Rect& region) {
    const Rect own = source->Bounds();
    std::unique_ptr<Image> before;
    auto made = AppliedTo(filter, std::move(source), run, &before);
    before = InForm(std::move(before), made->GetAlphaForm());
    const Rect bounds = run.expand ? own.Union(*made) : own;
    if (bounds == own) return WithRegion(std::move(before), *made, region);
    if (made->Bounds() != bounds) return WithBoth(std::move(before), std::move(made), bounds, region);
    CopyOutside(region, *before, *made);
    return made;
}

// One pixel of the mix. With a and b the two alphas and m the mask of full scale f, alpha is (a (f - m) + b m) / f and
// a colour the mean of both weighed by a (f - m) and b m, all rounded to the nearest.
template <typename F>
void MixPixel(std::span<const typename F::Channel, 4> after, std::int64_t mask,
              std::span<typename F::Channel, 4> before) {
    const std::int64_t weightBefore = before[3] * (F::fullScale - mask);
    const std::int64_t weightAfter = after[3] * mask;
    const std::int64_t weight = weightBefore + weightAfter;
    for (std::size_t c = 0; c < 3; ++c) {
        const std::int64_t sum = before[c] * weightBefore + after[c] * weightAfter + weight / 2;
        if (weight != 0) before[c] = static_cast<typename F::Channel>(sum / weight);
    }
    before[3] = static_cast<typename F::Channel>((weight + F::fullScale / 2) / F::fullScale);
}

template <typename F>
void MixRow(const Image& after, const Image& mask, Image& before, std::int32_t y) {
    const auto own = ImageRow<F>(before, y);
    const auto coverage = ImageRow<F>(mask, y);
    constexpr std::array<typename F::Channel, 4> nothing{};
    for (std::int32_t x = before.x0; x <= before.x1; ++x) {
        const auto i = static_cast<std::size_t>(x - before.x0);
        std::span<const typename F::Channel, 4> made = nothing;
        if (after.Contains(x, y))
            made = std::span<const typename F::Channel>(ImageRow<F>(after, y))
                       .subspan(4 * static_cast<std::size_t>(x - after.x0))
                       .template first<4>();
        MixPixel<F>(made, coverage[i], own.subspan(4 * i).template first<4>());
    }
}

// The same as one by one, on one thread from the first to the last.
std::unique_ptr<Image> RunInOrder(std::span<const std::unique_ptr<Filter>> filters, std::unique_ptr<Image> picture,
                                  const FilterRun& run, const std::function<void(std::int32_t)>& done) {
    const PicturePool pool;
    for (std::size_t next = 0; next < filters.size();) {
        const std::size_t byRows = run.region ? 0 : RowFiltersIn(filters.subspan(next), picture->GetDepth());
        const std::size_t end = next + std::max<std::size_t>(byRows, 1);
        picture = byRows > 0 ? RunByRows(filters.subspan(next, byRows), std::move(picture), run)
                             : RunSparingly(*filters[next], std::move(picture), run);
        for (; next < end; ++next)
            if (done) done(static_cast<std::int32_t>(next) + 1);
    }
    return picture;
}

}  // namespace

void SettleLattice() {
    [[maybe_unused]] static const bool settled = [] {
        SeedRandom(1);
        MarbleEffect().Prepare();
        TurbulenceEffect().Prepare();
        return true;
    }();
}

std::unique_ptr<Image> Unshared(std::unique_ptr<Image> image) {
    return image->buffer != nullptr && image->buffer->references > 1 ? image->Clone() : std::move(image);
}

std::unique_ptr<Image> RunFilter(Filter& filter, std::unique_ptr<Image> source, const FilterRun& run) {
    if (dynamic_cast<const ThresholdBlur*>(&filter) != nullptr) return source;  // not even in another form
    if (run.region) return RunInRegion(filter, std::move(source), run, *run.region);
    const Rect own = source->Bounds();
    auto made = AppliedTo(filter, std::move(source), run, nullptr);
    const Rect bounds = run.expand ? own.Union(*made) : own;
    return WithBounds(std::move(made), bounds);
}

std::unique_ptr<Image> RunFilters(std::span<const std::unique_ptr<Filter>> filters, const Image& source,
                                  const FilterRun& run, const std::function<void(std::int32_t)>& done) {
    auto picture = RunFilters(filters, std::make_unique<Image>(source), run, done);
    return picture->buffer == source.buffer ? picture->Clone() : std::move(picture);
}

std::unique_ptr<Image> RunFilters(std::span<const std::unique_ptr<Filter>> filters, std::unique_ptr<Image> source,
                                  const FilterRun& run, const std::function<void(std::int32_t)>& done) {
    SettleLattice();
    SeedForFrame(run.frame);
    std::unique_ptr<Image> picture = std::move(source);
    const std::int64_t pixels = std::int64_t{picture->Width()} * picture->Height();
    if (pixels <= pixelsPerBand) return RunInOrder(filters, std::move(picture), run, done);  // no work for workers
    RunTogether([&, paint = currentPaintColour] {
        currentPaintColour = paint;  // a thread's own
        picture = RunInOrder(filters, std::move(picture), run, done);
    });
    return picture;
}
std::unique_ptr<Image> MixByMask(std::unique_ptr<Image> before, const Image& after, const Image& mask) {
    auto mixed = InForm(std::move(before), AlphaForm::Straight);
    const auto to = InForm(std::make_unique<Image>(after), AlphaForm::Straight);
    for (std::int32_t y = mixed->y0; y <= mixed->y1; ++y)
        WithFormatOf(*mixed, [&]<typename F>(F) { MixRow<F>(*to, mask, *mixed, y); });
    return mixed;
}

}  // namespace chalkpane::app
