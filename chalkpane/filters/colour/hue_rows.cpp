#include "chalkpane/filters/colour/hue_rows.h"

#include <algorithm>

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/filters/colour/hsv_words.h"
#include "chalkpane/filters/colour_loop.h"

namespace chalkpane {
namespace {

template <typename F>
std::int32_t Wide(std::int32_t channel) {
    return F::bits == 8 ? channel * 64 + (channel >> 2) : channel;
}

template <typename F>
void Turn(std::span<typename F::Channel> pixels, float turn, const float* byValue) {
    const auto valueOf = [](std::int32_t blue, std::int32_t green, std::int32_t red) {
        const float value = static_cast<float>(Wide<F>(std::max(std::max(red, green), blue))) * 6.103888e-05F;
        return std::min(static_cast<std::int32_t>(value * static_cast<float>(F::fullScale)), F::fullScale);
    };
    const auto rotated = [turn](auto& blue, auto& green, auto& red, auto& /*alpha*/, float more) {
        HsvFloat colour = RgbToHsv({Wide<F>(red), Wide<F>(green), Wide<F>(blue)});
        colour.hue = WrapHue(colour.hue + turn + more);
        const RgbWords words = HsvToRgb(colour);
        blue = words.blue >> (14 - F::bits);
        green = words.green >> (14 - F::bits);
        red = words.red >> (14 - F::bits);
    };
    constexpr float none = 0.0F;
    if (byValue != nullptr)
        ForEachColour<F>(pixels, byValue, valueOf, rotated);
    else
        ForEachColour<F>(
            pixels, &none, [](auto, auto, auto) { return 0; }, rotated);
}

template <typename F>
void TurnFastest(std::span<typename F::Channel> pixels, float turn, const float* byValue) {
    if constexpr (builtWithAvx512)
        if (HasAvx512()) return TurnHuesAvx512(pixels, turn, byValue);
    if constexpr (builtWithAvx2)
        if (HasAvx2()) pixels = pixels.subspan(TurnHuesAvx2(pixels, turn, byValue));
    Turn<F>(pixels, turn, byValue);
}

}  // namespace

void TurnHues(std::span<std::uint8_t> pixels, float turn, const float* byValue) {
    TurnFastest<PixelFormat8>(pixels, turn, byValue);
}
void TurnHues(std::span<std::uint16_t> pixels, float turn, const float* byValue) {
    TurnFastest<PixelFormat14>(pixels, turn, byValue);
}

}  // namespace chalkpane
