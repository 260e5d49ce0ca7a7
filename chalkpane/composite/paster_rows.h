#pragma once

#include <cstdint>

#include "chalkpane/composite/paste_span.h"
#include "chalkpane/image/pixel_format.h"

namespace chalkpane {

// The row kernels of `Paster`, by the use of a clip; an opacity of `fullOpacity` is full.
//
//   premultiplied  the source's colour is; at full opacity and without a clip such a source has a form of its own
template <typename F>
SpanKernels<F> PasterKernels(bool premultiplied, bool atFullOpacity);

template <typename F>
inline constexpr std::int32_t fullOpacity = F::fullScale + 1;

extern template SpanKernels<PixelFormat8> PasterKernels<PixelFormat8>(bool, bool);
extern template SpanKernels<PixelFormat14> PasterKernels<PixelFormat14>(bool, bool);

}  // namespace chalkpane
