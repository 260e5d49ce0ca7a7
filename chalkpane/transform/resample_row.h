#pragma once

#include <cstddef>
#include <cstdint>

#include "chalkpane/image/pixel_format.h"
#include "chalkpane/image/rect.h"

namespace chalkpane {

// Fixed-point bilinear resampling of one row.

// The source area, its pixels addressed from the lower left one.
template <typename Channel>
struct ResampleSource {
    const Channel* first = nullptr;  // of pixel (area.x0, area.y0)
    std::ptrdiff_t rowStep = 0;      // channels to the row above
    Rect area;                       // what is outside reads as zero
};

// An iteration over the source in 16.16 fixed point, from pixel centre to pixel centre.
struct ResampleIterator {
    std::int64_t u = 0;  // where the row begins
    std::int64_t v = 0;
    std::int64_t stepU = 0;  // to the next column
    std::int64_t stepV = 0;
};

// Fills `count` pixels of `channels` channels, 1 or 4.
template <typename F>
using ResampleRowFunction = void (*)(const ResampleSource<typename F::Channel>& source,
                                     const ResampleIterator& iterator, typename F::Channel* target,
                                     std::ptrdiff_t count);

// The two forms of a row function, which give the same bytes; `vector` needs AVX2.
template <typename F>
struct ResampleRowFunctions {
    ResampleRowFunction<F> plain = nullptr;
    ResampleRowFunction<F> vector = nullptr;

    [[nodiscard]] ResampleRowFunction<F> Fastest() const;
};

template <typename F>
ResampleRowFunctions<F> ResampleRowFor(std::int32_t channels);

extern template struct ResampleRowFunctions<PixelFormat8>;
extern template struct ResampleRowFunctions<PixelFormat14>;
extern template ResampleRowFunctions<PixelFormat8> ResampleRowFor<PixelFormat8>(std::int32_t);
extern template ResampleRowFunctions<PixelFormat14> ResampleRowFor<PixelFormat14>(std::int32_t);

}  // namespace chalkpane
