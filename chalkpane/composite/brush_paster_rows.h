#pragma once

#include <cstdint>

#include "chalkpane/composite/paste_span.h"
#include "chalkpane/image/pixel_format.h"

namespace chalkpane {

// Opacity 1.0 is full scale exactly.
template <typename F>
constexpr double pasteOpacityFactor = F::fullScale + 0.001;

// The row kernels of `BrushPaster`, by the use of a clip. A mode other than 0 has kernels of its own, which blend the
// row first.
template <typename F>
const SpanKernels<F>& BrushPasterKernels(bool blended, PasteBehaviour behaviour);

extern template const SpanKernels<PixelFormat8>& BrushPasterKernels<PixelFormat8>(bool, PasteBehaviour);
extern template const SpanKernels<PixelFormat14>& BrushPasterKernels<PixelFormat14>(bool, PasteBehaviour);

}  // namespace chalkpane
