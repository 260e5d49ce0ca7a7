#include "filters/colour/tint_filter.h"

#include <algorithm>
#include <cmath>

#include "filters/colour/paint_colour_list.h"
#include "filters/image_rows.h"
#include "filters/paint_colour.h"

namespace chalkpane {
namespace {

// A tint counts from this amount on.
constexpr float leastAmount = 0.001F;

// How much of a range's amount a luma gets, where i of n is the luma; negative outside the range.
using RangePart = float (*)(float i, float n);
float ShadowPart(float i, float n) { return 1.0F - 2.0F * i / n; }
float MidtonePart(float i, float n) { return 1.0F - 2.0F * std::fabs(i - n / 2.0F) / n; }
float HighlightPart(float i, float n) { return 2.0F * (i - n / 2.0F) / n; }

}  // namespace

TintFilter::TintFilter(bool withPaintColour)
    : m_keep(withPaintColour ? 1.0F : 0.0F), m_withPaintColour(withPaintColour) {
    if (withPaintColour) return;
    parameters = &ListWithoutPaintColour<TintFilter>([](ParameterDeclaration& declaration) {
        if (declaration.code == 2) declaration.defaultValue = 0.0;  // "Keep Highlights"
    });
}

bool TintFilter::IsIdentity(const Image& /*source*/) const {
    return m_amount <= leastAmount && m_shadow <= leastAmount && m_midtone <= leastAmount && m_highlight <= leastAmount;
}

TintFilter::Tint TintFilter::MakeTint(const Colour& colour, std::int32_t fullScale) const {
    std::int32_t tintLuma = LumaByte(colour.red, colour.green, colour.blue);
    const bool black = tintLuma == 0;
    if (black) tintLuma = 1;
    Tint tint;
    tint.table.resize(static_cast<std::size_t>(fullScale) + 1);
    for (std::int32_t luma = 0; luma <= fullScale; ++luma) {
        const auto atLuma = [&](std::uint16_t component) {
            const float wanted = black ? 0.0F : static_cast<float>(component);
            const float scaled = static_cast<float>(luma) * wanted / static_cast<float>(tintLuma) + 0.5F;
            return std::min(Truncated(scaled), fullScale);
        };
        std::int32_t red = atLuma(colour.red);
        std::int32_t green = atLuma(colour.green);
        std::int32_t blue = atLuma(colour.blue);
        const std::int32_t reached = LumaByte(red, green, blue);
        if (reached < luma) {
            const float missing = static_cast<float>(luma - reached) / static_cast<float>(fullScale - reached) * m_keep;
            const auto lift = [missing, fullScale](std::int32_t component) {
                const float room = static_cast<float>(fullScale) + 0.49F - static_cast<float>(component);
                return std::clamp(component + std::clamp(Truncated(missing * room + 0.5F), -65536, 65536), 0,
                                  fullScale);
            };
            red = lift(red);
            green = lift(green);
            blue = lift(blue);
        }
        tint.table[static_cast<std::size_t>(luma)] = {
            static_cast<std::uint16_t>(blue), static_cast<std::uint16_t>(green), static_cast<std::uint16_t>(red)};
    }
    return tint;
}

void TintFilter::BeginRun(const Image& source) {
    if (m_withPaintColour && m_usePaintColour) m_colour = currentPaintColour;
    const std::int32_t fullScale = WithFormatOf(source, [](auto format) { return decltype(format)::fullScale; });
    const std::size_t size = static_cast<std::size_t>(fullScale) + 1;
    m_tints.clear();
    if (m_amount >= leastAmount) {
        m_tints.push_back(MakeTint(m_colour, fullScale));
        m_tints.back().weights.assign(size, std::clamp(Truncated(m_amount * 256.0F), -65536, 65536));
    }
    const auto addRange = [&](const Colour& colour, float amount, RangePart part) {
        if (!(amount >= leastAmount)) return;
        m_tints.push_back(MakeTint(colour, fullScale));
        for (std::size_t i = 0; i < size; ++i) {
            const float weight = std::max(0.0F, part(static_cast<float>(i), static_cast<float>(size)) * amount);
            m_tints.back().weights.push_back(Truncated(weight * 255.0F) & 255);  // weights are bytes
        }
    };
    const bool onlyMain = !(m_shadow >= leastAmount || m_midtone >= leastAmount || m_highlight >= leastAmount);
    addRange(m_shadowColour, m_shadow, ShadowPart);
    addRange(m_midtoneColour, m_midtone, MidtonePart);
    addRange(m_highlightColour, m_highlight, HighlightPart);
    m_direct = onlyMain && m_amount > 0.999F;
}

template <typename F>
void TintFilter::Row(std::span<typename F::Channel> pixels) const {
    using Channel = typename F::Channel;
    // DIFFERS: 8 bits round the luma and the sum of a blended tint, 14 bits neither.
    constexpr std::int32_t rounding = F::bits == 8 ? 128 : 0;
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
        const std::int32_t blue = pixels[i];
        const std::int32_t green = pixels[i + 1];
        const std::int32_t red = pixels[i + 2];
        if (pixels[i + 3] == 0) {
            pixels[i] = pixels[i + 1] = pixels[i + 2] = 0;
        } else if (m_direct) {
            const Entry& entry = m_tints[0].table[static_cast<std::size_t>(LumaOf<F>(red, green, blue) & F::fullScale)];
            pixels[i] = static_cast<Channel>(entry.blue);
            pixels[i + 1] = static_cast<Channel>(entry.green);
            pixels[i + 2] = static_cast<Channel>(entry.red);
        } else {
            const std::int32_t luma =
                F::bits == 8 ? (77 * red + 151 * green + 28 * blue + 128) >> 8 : LumaWord(red, green, blue);
            const auto index = static_cast<std::size_t>(luma & F::fullScale);
            std::int64_t blueSum = rounding;
            std::int64_t greenSum = rounding;
            std::int64_t redSum = rounding;
            for (const Tint& tint : m_tints) {
                const std::int64_t weight = tint.weights[index];
                const Entry& entry = tint.table[index];
                blueSum += (entry.blue - blue) * weight;
                greenSum += (entry.green - green) * weight;
                redSum += (entry.red - red) * weight;
            }
            pixels[i] = LimitedChannel<F>(static_cast<std::int32_t>(blue + (blueSum >> 8)));
            pixels[i + 1] = LimitedChannel<F>(static_cast<std::int32_t>(green + (greenSum >> 8)));
            pixels[i + 2] = LimitedChannel<F>(static_cast<std::int32_t>(red + (redSum >> 8)));
        }
    }
}

template void TintFilter::Row<PixelFormat8>(std::span<std::uint8_t> pixels) const;
template void TintFilter::Row<PixelFormat14>(std::span<std::uint16_t> pixels) const;

}  // namespace chalkpane
