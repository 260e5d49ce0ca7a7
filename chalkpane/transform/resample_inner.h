#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "chalkpane/transform/resample_row.h"

namespace chalkpane {

// The inner part of a resampled row, where all four neighbours of every pixel lie inside the source.

// Where a position lies between its neighbours, in parts of 256.
struct Fractions {
    std::uint32_t x;
    std::uint32_t y;
    Fractions(std::int64_t u, std::int64_t v)
        : x(static_cast<std::uint32_t>(u >> 8) & 255), y(static_cast<std::uint32_t>(v >> 8) & 255) {}
};

// The weighted sum of four neighbours, whose weights add up to 65536, as a channel.
//
// DIFFERS: 8 bits shift by 16, which truncates; 14 bits divide by 65535 and round.
template <typename F>
constexpr typename F::Channel FinishSum(std::uint32_t sum);

template <>
constexpr std::uint8_t FinishSum<PixelFormat8>(std::uint32_t sum) {
    return static_cast<std::uint8_t>(sum >> 16);
}

// truncate(sum / 65535.0 + 0.5), limited to full scale, without floating point: sums are whole, so it is the quotient
// of sum + 32767 by 65535, and the quotient of n by 65535 is (n + 1 + n / 65536) / 65536 far beyond this range.
template <>
constexpr std::uint16_t FinishSum<PixelFormat14>(std::uint32_t sum) {
    const std::uint32_t n = std::min(sum, std::uint32_t{PixelFormat14::fullScale} << 16) + 32767;
    return static_cast<std::uint16_t>((n + 1 + (n >> 16)) >> 16);
}

template <typename F>
constexpr typename F::Channel Interpolate(std::uint32_t p00, std::uint32_t p10, std::uint32_t p01, std::uint32_t p11,
                                          const Fractions& f) {
    return FinishSum<F>(((256 - f.x) * p00 + f.x * p10) * (256 - f.y) + (f.x * p11 + (256 - f.x) * p01) * f.y);
}

// Any iteration.
//
//   iterator    begins at the first pixel, counted from the area's lower left pixel
//   count   pixels
template <typename F, int channels>
void ResampleAlong(const ResampleSource<typename F::Channel>& source, const ResampleIterator& iterator,
                   typename F::Channel* target, std::ptrdiff_t count) {
    std::int64_t u = iterator.u;
    std::int64_t v = iterator.v;
    for (std::ptrdiff_t x = 0; x < count; ++x, u += iterator.stepU, v += iterator.stepV, target += channels) {
        const auto* lower = source.first + (v >> 16) * source.rowStep + (u >> 16) * channels;
        const auto* upper = lower + source.rowStep;
        const Fractions f(u, v);
        for (int c = 0; c < channels; ++c)
            target[c] = Interpolate<F>(lower[c], lower[c + channels], upper[c], upper[c + channels], f);
    }
}

// A pure move: the same fractions along the row, and neighbouring channels side by side in both rows. Whole numbers
// give the same sum in any order; this one, first up and then across, keeps 8-bit products within 16 bits.
//
//   count  channels, not pixels
template <typename F, int channels>
[[gnu::always_inline]] inline void ResampleMoved(const typename F::Channel* lower, const typename F::Channel* upper,
                                                 typename F::Channel* target, std::ptrdiff_t count,
                                                 const Fractions& f) {
    using Sum = std::conditional_t<F::bits == 8, std::uint16_t, std::uint32_t>;
    const auto top = static_cast<Sum>(f.y);
    const auto bottom = static_cast<Sum>(256 - f.y);
    const auto right = static_cast<Sum>(f.x);
    const auto left = static_cast<Sum>(256 - f.x);
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const std::ptrdiff_t next = i + channels;
        const std::uint32_t a = static_cast<Sum>(lower[i] * bottom + upper[i] * top);
        const std::uint32_t b = static_cast<Sum>(lower[next] * bottom + upper[next] * top);
        target[i] = FinishSum<F>(a * left + b * right);
    }
}

template <typename F, int channels>
struct PlainInner {
    static void Along(const ResampleSource<typename F::Channel>& source, const ResampleIterator& iterator,
                      typename F::Channel* target, std::ptrdiff_t count) {
        ResampleAlong<F, channels>(source, iterator, target, count);
    }
    static void Moved(const typename F::Channel* lower, const typename F::Channel* upper, typename F::Channel* target,
                      std::ptrdiff_t count, const Fractions& f) {
        ResampleMoved<F, channels>(lower, upper, target, count, f);
    }
};

// Needs AVX2, and is there where `builtWithAvx2`.
template <typename F, int channels>
struct Avx2Inner {
    static void Along(const ResampleSource<typename F::Channel>& source, const ResampleIterator& iterator,
                      typename F::Channel* target, std::ptrdiff_t count);
    static void Moved(const typename F::Channel* lower, const typename F::Channel* upper, typename F::Channel* target,
                      std::ptrdiff_t count, const Fractions& f);
};
extern template struct Avx2Inner<PixelFormat8, 1>;
extern template struct Avx2Inner<PixelFormat8, 4>;
extern template struct Avx2Inner<PixelFormat14, 1>;
extern template struct Avx2Inner<PixelFormat14, 4>;

template <typename F, int channels, typename Inner>
void ResampleInner(const ResampleSource<typename F::Channel>& source, const ResampleIterator& iterator,
                   typename F::Channel* target, std::ptrdiff_t count) {
    if (iterator.stepU != 65536 || iterator.stepV != 0) return Inner::Along(source, iterator, target, count);
    const auto* lower = source.first + (iterator.v >> 16) * source.rowStep + (iterator.u >> 16) * channels;
    Inner::Moved(lower, lower + source.rowStep, target, count * channels, Fractions(iterator.u, iterator.v));
}

}  // namespace chalkpane
