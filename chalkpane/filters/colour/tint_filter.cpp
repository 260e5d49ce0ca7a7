#include "chalkpane/filters/colour/tint_filter.h"

#include <algorithm>
#include <cmath>

#include "chalkpane/filters/colour/fill_table.h"
#include "chalkpane/filters/colour/paint_colour_list.h"
#include "chalkpane/filters/paint_colour.h"
#include "chalkpane/image/image_rows.h"

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

// KEEP: 32-bit floats throughout; in doubles some entries of a 14-bit table would be one higher.
TintFilter::Entry TintFilter::TintAt(const Colour& colour, std::int32_t luma, std::int32_t fullScale) const {
    std::int32_t tintLuma = LumaByte(colour.red, colour.green, colour.blue);
    const bool black = tintLuma == 0;
    if (black) tintLuma = 1;
    const auto atLuma = [&](std::uint16_t component) {
        const float wanted = black ? 0.0F : static_cast<float>(component);
        const float scaled = static_cast<float>(luma) * wanted / static_cast<float>(tintLuma) + 0.5F;
        return std::min(Truncated(scaled), fullScale);
    };
    const Entry entry{atLuma(colour.blue), atLuma(colour.green), atLuma(colour.red)};
    const std::int32_t reached = LumaByte(entry.red, entry.green, entry.blue);
    if (reached >= luma) return entry;
    const float missing = static_cast<float>(luma - reached) / static_cast<float>(fullScale - reached) * m_keep;
    const auto lift = [missing, fullScale](std::int32_t component) {
        const float room = static_cast<float>(fullScale) + 0.49F - static_cast<float>(component);
        return std::clamp(component + std::clamp(Truncated(missing * room + 0.5F), -65536, 65536), 0, fullScale);
    };
    return {lift(entry.blue), lift(entry.green), lift(entry.red)};
}

void TintFilter::BeginRun(const Image& source) {
    if (m_withPaintColour && m_usePaintColour) m_colour = currentPaintColour;
    const std::int32_t fullScale = WithFormatOf(source, [](auto format) { return decltype(format)::fullScale; });
    const bool onlyMain = !(m_shadow >= leastAmount || m_midtone >= leastAmount || m_highlight >= leastAmount);
    m_direct = onlyMain && m_amount > 0.999F;
    // DIFFERS: 8 bits round the sum of a blended tint, 14 bits do not.
    const std::int32_t rounding = fullScale == PixelFormat8::fullScale && !m_direct ? 128 : 0;
    m_blends.assign(static_cast<std::size_t>(fullScale) + 1, {rounding, rounding, rounding, 0});
    const std::int32_t mainWeight = m_direct ? 1 : std::clamp(Truncated(m_amount * 256.0F), -65536, 65536);
    if (m_amount >= leastAmount) AddTint(m_colour, [mainWeight](float, float) { return mainWeight; });
    const auto addRange = [this](const Colour& colour, float amount, RangePart part) {
        if (!(amount >= leastAmount)) return;
        AddTint(colour, [amount, part](float i, float n) {
            return Truncated(std::max(0.0F, part(i, n) * amount) * 255.0F) & 255;  // weights are bytes
        });
    };
    addRange(m_shadowColour, m_shadow, ShadowPart);
    addRange(m_midtoneColour, m_midtone, MidtonePart);
    addRange(m_highlightColour, m_highlight, HighlightPart);
    m_narrow = std::all_of(m_blends.begin(), m_blends.end(), [](const Blend& at) { return at.weight <= 32767; });
}

template <typename WeightOf>
void TintFilter::AddTint(const Colour& colour, WeightOf weightOf) {
    const auto size = static_cast<std::int32_t>(m_blends.size());
    FillTable(size - 1, [&](std::int32_t luma) {
        const Entry entry = TintAt(colour, luma, size - 1);
        const std::int32_t weight = weightOf(static_cast<float>(luma), static_cast<float>(size));
        Blend& at = m_blends[static_cast<std::size_t>(luma)];
        at.blue += entry.blue * weight;
        at.green += entry.green * weight;
        at.red += entry.red * weight;
        at.weight += weight;
    });
}

}  // namespace chalkpane
