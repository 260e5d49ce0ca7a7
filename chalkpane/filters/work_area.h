#pragma once

#include <cstdint>
#include <memory>
#include <new>

#include "chalkpane/base/memory_loss.h"
#include "chalkpane/image/image.h"
#include "chalkpane/image/rect.h"

namespace chalkpane {

// The head of every plain filter's `Apply`: what it answers without any work, and where it works.
//
//   region  may be null; one that misses the source gives a blank image of the source's bounds and format
//   grow    pixels by which the work rectangle is larger than the source on every side, before `region` cuts it
//   make    called with the work rectangle, never without pixels; returns the new image
//
// `result` is null when there was no memory for it.
template <typename Make>
void ApplyInWorkArea(const Image& source, std::unique_ptr<Image>& result, const Rect* region, std::int32_t grow,
                     Make make) {
    result.reset();
    try {
        if (source.ByteSize() == 0 || (region != nullptr && !region->Intersects(source))) {
            result = std::make_unique<Image>(source.Bounds(), source);
            return;
        }
        Rect work = source.Bounds();
        work.Inflate(grow);
        if (region != nullptr) work = work.Intersection(*region);
        result = make(work);
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
        result.reset();
    }
}

// What a filter gives whose settings change nothing: a copy of the whole source, whatever the region.
inline void ApplyAsCopy(const Image& source, std::unique_ptr<Image>& result) {
    result.reset();
    try {
        result = source.Clone();
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
        result.reset();
    }
}

// Blank, in the source's format.
[[nodiscard]] inline std::unique_ptr<Image> NewImageLike(const Image& source, const Rect& bounds) {
    return std::make_unique<Image>(bounds, source);
}

// Every side outward by n, for filters that read their neighbourhood.
[[nodiscard]] inline Rect Grown(Rect rect, std::int32_t n) {
    rect.Inflate(n);
    return rect;
}

}  // namespace chalkpane
