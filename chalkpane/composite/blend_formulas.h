#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <type_traits>

#include "chalkpane/composite/blend_byte_formulas.h"
#include "chalkpane/composite/blend_kernels.h"
#include "chalkpane/composite/hsv.h"
#include "chalkpane/image/pixel_format.h"

namespace chalkpane::blend {

// The blend modes: their arithmetic, one formula for both pixel formats, and below it the one table of all. s is a
// channel of the source, d the same channel of the destination. Divisions truncate towards zero.
//
// Stored 14-bit words may lie above full scale; every formula gives a defined result for them.

struct Format8 : PixelFormat8 {
    static constexpr bool burnSparesFullDestination = true;
    // The rounded product as the screen term of Soft Light forms it.
    static constexpr auto SoftLightScale = Scale8;
    static constexpr std::int32_t randomMask = 0xff;
    static constexpr std::int32_t redWeight = 77, greenWeight = 151, blueWeight = 28;
    static Rgb14 ToWords(const std::uint8_t* pixel) { return {Widen(pixel[2]), Widen(pixel[1]), Widen(pixel[0])}; }
    static std::uint8_t FromWord(std::uint16_t word) { return Narrow(word); }
    static Hsv ToHsv(const Rgb14& colour) { return RgbToHsv8(colour); }
    static Rgb14 FromHsv(const Hsv& colour) { return HsvToRgb8(colour); }
};

struct Format14 : PixelFormat14 {
    static constexpr bool burnSparesFullDestination = false;  // DIFFERS: Burn
    // DIFFERS: keeps the 8-bit rounding, so the term is some 64 times too large and what follows wraps. That is what
    // the mode looks like at 14 bits.
    static constexpr std::int32_t SoftLightScale(std::int32_t a, std::int32_t b) {
        const std::uint32_t t = static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b) + 128;
        return static_cast<std::int32_t>(t + static_cast<std::uint32_t>(static_cast<std::int32_t>(t) >> 8)) >> 8;
    }
    static constexpr std::int32_t randomMask = 0x3fff;
    static constexpr std::int32_t redWeight = 4915, greenWeight = 9666, blueWeight = 1802;
    static Rgb14 ToWords(const std::uint16_t* pixel) { return {pixel[2], pixel[1], pixel[0]}; }
    static std::uint16_t FromWord(std::uint16_t word) { return word; }
    static Hsv ToHsv(const Rgb14& colour) { return RgbToHsv14(colour); }
    static Rgb14 FromHsv(const Hsv& colour) { return HsvToRgb14(colour); }
};

// One colour channel from two, alpha from the source.
template <typename F>
struct ChannelFormulas {
    static constexpr std::int32_t full = F::fullScale;
    static constexpr std::int32_t above = full + 1;
    static constexpr std::int32_t half = above / 2;
    using Int = std::int32_t;
    using Channel = typename F::Channel;

    // Conditions by bits: of a conditional the compiler makes a jump around the division, and then no vectors.
    static constexpr Int Select(bool condition, Int yes, Int no) {
        const Int chosen = -static_cast<Int>(condition);
        return (yes & chosen) | (no & ~chosen);
    }
    static constexpr Int AtLeastOne(Int n) { return n - ((n - 1) >> 31); }  // of what is not negative
    // More than any quotient where n is negative, otherwise 0.
    static constexpr Int Beyond(Int n) { return (n >> 31) & (1 << 30); }

    static constexpr Int Screened(Int s, Int d) { return F::Scale(full - s, full - d); }

    // Truncated, by the division that registers have. The quotient of whole numbers n and d, if it is not whole itself,
    // lies at least 1 / d below the next whole one, and what is rounded to p bits goes astray by n / d / 2^p at most:
    // less, where n is below 2^p. With 8 bits n is at most 255 * 256, with 14 bits (and words beyond) 65535 * 16384.
    static constexpr Int Quotient(Int n, Int d) {
        using Real = std::conditional_t<F::bits == 8, float, double>;
        return static_cast<Int>(static_cast<Real>(n) / static_cast<Real>(d));
    }

    // In the channel's own type: what a sum loses by wrapping makes it smaller than its parts.
    static constexpr Channel Add(Channel s, Channel d) {
        const auto sum = static_cast<Channel>(s + d);
        return std::min(sum < s ? Channel{full} : sum, Channel{full});
    }
    static constexpr Channel Subtract(Channel s, Channel d) { return static_cast<Channel>(std::max(s, d) - s); }
    static constexpr Channel Difference(Channel s, Channel d) {
        return static_cast<Channel>(std::max(s, d) - std::min(s, d));
    }
    static constexpr Int Multiply(Int s, Int d) { return F::Scale(s, d); }
    static constexpr Int DarkenOnly(Int s, Int d) { return std::min(s, d); }
    // KEEP: Burn and Dodge divide by the destination, the Color forms by the source.
    static constexpr Int Burn(Int s, Int d) {
        const Int burnt = std::clamp(Quotient((s - full) * above, d + 1) + full, 0, Int{full});
        return F::burnSparesFullDestination ? Select(d == full, s, burnt) : burnt;
    }
    // A source of nothing is divided by 1, which is then pushed below all.
    static constexpr Int ColourBurn(Int s, Int d) {
        return std::max(Quotient((d - full) * above, AtLeastOne(s)) + full - Beyond(s - 1), 0);
    }
    static constexpr Int Screen(Int s, Int d) { return full - Screened(s, d); }
    static constexpr Int LightenOnly(Int s, Int d) { return std::max(s, d); }
    static constexpr Int Dodge(Int s, Int d) {
        return std::min(Quotient(s * above, std::max(above - d, 1)), Int{full});
    }
    static constexpr Int ColourDodge(Int s, Int d) {
        return std::min(Quotient(d * above, AtLeastOne(std::max(full - s, 0))) + Beyond(full - 1 - s), Int{full});
    }
    static constexpr Int Overlay(Int s, Int d) { return d < half ? 2 * F::Scale(s, d) : full - 2 * Screened(s, d); }
    static constexpr Int SoftLight(Int s, Int d) {
        const Int multiplied = F::Scale(d, s);
        const Int screened = full - F::SoftLightScale(full - d, full - s);
        return multiplied + F::Scale(screened - multiplied, d);
    }
    static constexpr Int HardLight(Int s, Int d) { return s >= half ? full - 2 * Screened(d, s) : 2 * F::Scale(d, s); }
    // KEEP: the plain comparison, without doubling the source.
    static constexpr Int PinLight(Int s, Int d) { return s >= half ? std::max(s, d) : std::min(s, d); }
    static constexpr Int Exclusion(Int s, Int d) { return d + F::Scale(full - 2 * d, s); }
    static constexpr Int Negation(Int s, Int d) { return full - std::abs(full - s - d); }
};

// The same where bytes have narrower forms.
struct ChannelFormulas8 : ChannelFormulas<Format8> {
    static constexpr auto Overlay = &ByteFormulas::Overlay;
    static constexpr auto HardLight = &ByteFormulas::HardLight;
    static constexpr auto SoftLight = &ByteFormulas::SoftLight;
    static constexpr auto Exclusion = &ByteFormulas::Exclusion;
};
template <typename F>
using NarrowestFormulas = std::conditional_t<F::bits == 8, ChannelFormulas8, ChannelFormulas<F>>;

// A whole pixel from two.
template <typename F>
struct PixelFormulas {
    using Channel = typename F::Channel;

    static void SetColour(Channel* out, const Channel* from) { std::copy(from, from + 3, out); }
    static void SetAlpha(Channel* out, std::int32_t alpha) { out[3] = static_cast<Channel>(alpha); }
    static std::int32_t Luma(const Channel* pixel) {
        return (F::greenWeight * pixel[1] + F::redWeight * pixel[2] + F::blueWeight * pixel[0]) >> F::bits;
    }
    static void SetHsv(Channel* out, const Channel* s, const Hsv& colour) {
        const Rgb14 words = F::FromHsv(colour);
        out[0] = F::FromWord(words.blue);
        out[1] = F::FromWord(words.green);
        out[2] = F::FromWord(words.red);
        out[3] = s[3];
    }
    static Hsv HsvOf(const Channel* pixel) { return F::ToHsv(F::ToWords(pixel)); }

    static void Hue(const Channel* s, const Channel* d, Channel* out) {
        const Hsv below = HsvOf(d);
        SetHsv(out, s, {HsvOf(s).hue, below.saturation, below.value});
    }
    static void Saturation(const Channel* s, const Channel* d, Channel* out) {
        const Hsv below = HsvOf(d);
        SetHsv(out, s, {below.hue, HsvOf(s).saturation, below.value});
    }
    static void Value(const Channel* s, const Channel* d, Channel* out) {
        const Hsv below = HsvOf(d);
        SetHsv(out, s, {below.hue, below.saturation, HsvOf(s).value});
    }
    static void Colour(const Channel* s, const Channel* d, Channel* out) {
        const Hsv above = HsvOf(s);
        SetHsv(out, s, {above.hue, above.saturation, HsvOf(d).value});
    }
    static void SourceAlpha(const Channel* s, const Channel* d, Channel* out) {
        SetColour(out, d);
        SetAlpha(out, s[3]);
    }
    static void SourceLuma(const Channel* s, const Channel* d, Channel* out) {
        SetColour(out, d);
        SetAlpha(out, Luma(s));
    }
    // KEEP: both inversions take from 255 at 14 bits too, and what falls below zero wraps in the channel.
    static void InvertedAlpha(const Channel* s, const Channel* d, Channel* out) {
        SetColour(out, d);
        SetAlpha(out, 255 - s[3]);
    }
    static void InvertedLuma(const Channel* s, const Channel* d, Channel* out) {
        SetColour(out, d);
        SetAlpha(out, 255 - Luma(s));
    }
};

// In index order: a brush holds the index. The names are what the operator reads; a mode without one is for internal
// use.
inline constexpr std::string_view unnamed;
template <typename F, typename C = NarrowestFormulas<F>, typename P = PixelFormulas<F>>
inline constexpr auto blendModes = std::to_array<BlendMode<F>>({
    {"Normal", &CopyRow<F, From::source>},
    {"Add", &AddRow<F, C::Add>},
    {"Subtract", &EachChannel<F, C::Subtract>},
    {"Difference", &EachChannel<F, C::Difference>},
    {"Multiply", &EachChannel<F, C::Multiply>},
    {"Darken Only", &EachChannel<F, C::DarkenOnly>},
    {"Burn", &EachChannel<F, C::Burn>},
    {"Color Burn", &EachChannel<F, C::ColourBurn>},
    {"Screen", &EachChannel<F, C::Screen>},
    {"Lighten Only", &EachChannel<F, C::LightenOnly>},
    {"Dodge", &EachChannel<F, C::Dodge>},
    {"Color Dodge", &EachChannel<F, C::ColourDodge>},
    {"Hue", &HsvRow<F, HsvMode::Hue, P::Hue>},
    {"Saturation", &HsvRow<F, HsvMode::Saturation, P::Saturation>},
    {"Value", &HsvRow<F, HsvMode::Value, P::Value>},
    {"Color", &HsvRow<F, HsvMode::HueAndSaturation, P::Colour>},
    {"Overlay", &EachChannel<F, C::Overlay>},
    {"Soft Light", &EachChannel<F, C::SoftLight>},
    {"Hard Light", &EachChannel<F, C::HardLight>},
    {"Pin Light", &EachChannel<F, C::PinLight>},
    {"Exclusion", &EachChannel<F, C::Exclusion>},
    {"Negation", &EachChannel<F, C::Negation>},
    {unnamed, &DissolveRow<F>},
    {unnamed, &CopyRow<F, From::destination>},
    {unnamed, &EachPixel<F, P::SourceAlpha>},
    {unnamed, &EachPixel<F, P::SourceLuma>},
    {unnamed, &EachPixel<F, P::InvertedAlpha>},
    {unnamed, &EachPixel<F, P::InvertedLuma>},
});
static_assert(blendModes<Format8>.size() == blendModeCount);

template <typename F>
constexpr std::array<BlendKernel<F>, blendModeCount> KernelsOf() {
    std::array<BlendKernel<F>, blendModeCount> kernels{};
    for (std::size_t mode = 0; mode < kernels.size(); ++mode) kernels[mode] = blendModes<F>[mode].kernel;
    return kernels;
}

}  // namespace chalkpane::blend
