#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>

#include "chalkpane/filters/filter.h"
#include "chalkpane/image/image.h"
#include "chalkpane/image/rect.h"

namespace chalkpane::app {

// How filters run over a picture.
struct FilterRun {
    bool fast = false;             // distortions take the nearest pixel
    bool expand = false;           // the picture grows to hold what a filter moves beyond its edges
    std::optional<Rect> region{};  // in the plane of the picture; only this part changes
    std::int32_t frame = 0;        // which of a sequence: moving noise follows it
    double time = 0.0;             // seconds
};

// Runs one filter over a four-channel image in either form of alpha and answers the new picture, at the source's depth,
// in either form. Its bounds are the source's, or with `expand` whatever else the filter made besides.
//
// Filters that look at one pixel at a time get straight colours, so that hardly opaque ones keep theirs; all others get
// them premultiplied, so that what nobody sees does not bleed. Filters that know 8 bits only run at 8. With a region,
// pixels of the source outside it are the source's own; what a filter makes beyond the source's edges stays.
//
// Throws std::bad_alloc when there is no memory.
// A source whose pixels nobody else has is changed, and gone before the result is there.
[[nodiscard]] std::unique_ptr<Image> RunFilter(Filter& filter, std::unique_ptr<Image> source, const FilterRun& run);

// The image, or one of the same pixels where others have them too.
[[nodiscard]] std::unique_ptr<Image> Unshared(std::unique_ptr<Image> image);

// Runs filters in order, each over what the one before it made. `done` is called with the number of those that ran,
// after each; it may be empty. The same filters, fresh, picture and frame give the same result: the engine's random
// numbers (image/random.h) start over from the frame.
[[nodiscard]] std::unique_ptr<Image> RunFilters(std::span<const std::unique_ptr<Filter>> filters, const Image& source,
                                                const FilterRun& run,
                                                const std::function<void(std::int32_t)>& done = {});
// The same for a source that goes as `RunFilter` says: a large picture is there twice then and not three times.
[[nodiscard]] std::unique_ptr<Image> RunFilters(std::span<const std::unique_ptr<Filter>> filters,
                                                std::unique_ptr<Image> source, const FilterRun& run,
                                                const std::function<void(std::int32_t)>& done = {});

// Marble and turbulence share a lattice of random slopes, which either class draws at its first run in the process.
// Behind this both have drawn, always the same, so that no picture depends on what ran before it. `RunFilters` does so
// itself. The first call seeds the engine's random numbers.
void SettleLattice();

// A picture with straight alpha and the bounds of `before`, which is `after` where the mask is full, `before` where it
// is 0, and a mix in between, in proportion to alpha so that transparent pixels give no colour. All images are of one
// depth; the mask has one channel and the bounds of `before`, whose pixels are written where it is straight.
[[nodiscard]] std::unique_ptr<Image> MixByMask(std::unique_ptr<Image> before, const Image& after, const Image& mask);

}  // namespace chalkpane::app
