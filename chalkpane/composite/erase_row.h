#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "chalkpane/composite/paste_span.h"
#include "chalkpane/image/pixel_format.h"

namespace chalkpane {

// What is left of a channel under coverage m, in parts of full scale, and opacity p, in parts of `opacityLimit`.
template <typename F>
struct EraseArithmetic;
template <>
struct EraseArithmetic<PixelFormat8> {
    static constexpr double opacityFactor = 256.001;
    static constexpr std::int32_t opacityLimit = 256;
    static constexpr double opacityScale = 0.00390625;
    static constexpr std::int32_t invertedFull = 255;
};
template <>
struct EraseArithmetic<PixelFormat14> {
    static constexpr double opacityFactor = 16384.001;
    static constexpr std::int32_t opacityLimit = 16384;
    static constexpr double opacityScale = 6.103515625e-5;
    // DIFFERS: the inverted clip subtracts from 16384, not from full scale, so a clip value of 1 takes nothing away.
    static constexpr std::int32_t invertedFull = 16384;
};

// The factor is kept as a 32-bit float, and widened again for the product: its rounding decides halves.
template <typename F>
constexpr float EraseFactor(std::int32_t m, std::int32_t p) {
    return static_cast<float>(1.0 - (m / double{F::fullScale} * p * EraseArithmetic<F>::opacityScale));
}

// The row kernels of the eraser, by the use of a clip.
template <typename F>
const SpanKernels<F>& EraserKernels();

extern template const SpanKernels<PixelFormat8>& EraserKernels<PixelFormat8>();
extern template const SpanKernels<PixelFormat14>& EraserKernels<PixelFormat14>();

// The 8-bit row without a clip, `target` having 4 channels a pixel. Both versions give the same bytes.
//
//   mask     advances by `maskStep` bytes a pixel
//   opacity  0 .. 256
void EraseRow8Plain(std::uint8_t* target, const std::uint8_t* mask, std::ptrdiff_t maskStep, std::ptrdiff_t count,
                    std::int32_t opacity);
// Needs AVX2, and is there where `builtWithAvx2`. The mask has one byte a pixel.
void EraseRow8Avx2(std::uint8_t* target, const std::uint8_t* mask, std::ptrdiff_t count, std::int32_t opacity);

}  // namespace chalkpane
