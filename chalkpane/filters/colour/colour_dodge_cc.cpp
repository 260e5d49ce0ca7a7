#include "chalkpane/filters/colour/colour_dodge_cc.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "chalkpane/filters/colour/paint_colour_list.h"
#include "chalkpane/filters/paint_colour.h"
#include "chalkpane/image/image_rows.h"

namespace chalkpane {
namespace {

// A mode takes a channel c to where the colour's component s wants it; all in 0 .. 1.
using Mode = float (*)(float c, float s);

float Replace(float /*c*/, float s) { return s; }
float Dodge(float c, float s) { return c / (1.0F - 0.8F * s); }
float Burn(float c, float s) { return 1.0F - (1.0F - c) / (1.0F - 0.8F * s); }
float SoftDodge(float c, float s) {
    const float u = 0.8F * s;
    return c + u >= 1.0F ? 1.0F - (1.0F - u) * 0.5F / c : c * 0.5F / (1.0F - u);
}
float SoftBurn(float c, float s) {
    const float u = 0.8F * s;
    return c + u >= 1.0F ? 1.0F - (1.0F - c) * 0.5F / u : (s * 0.5F * 0.8F) / (1.0F - c);
}
float Lighten(float c, float s) { return std::max(c, s); }
float Darken(float c, float s) { return std::min(c, s); }

struct NamedMode {
    std::string_view label;
    Mode mode;
};
constexpr std::array<NamedMode, 7> modes{{
    {"Color", Replace},
    {"Color Dodge", Dodge},
    {"Color Burn", Burn},
    {"Soft Dodge", SoftDodge},
    {"Soft Burn", SoftBurn},
    {"Lighten Only", Lighten},
    {"Darken Only", Darken},
}};
constexpr auto modeLabels = [] {
    std::array<std::string_view, modes.size()> labels;
    std::transform(modes.begin(), modes.end(), labels.begin(), [](const NamedMode& mode) { return mode.label; });
    return labels;
}();
constexpr std::array<std::string_view, 4> rangeLabels{"All", "Shadows", "Midtones", "Highlights"};

std::vector<std::uint16_t> ChannelTable(Mode mode, float amount, std::uint16_t component, std::int32_t fullScale) {
    const auto full = static_cast<float>(fullScale);
    const float s = static_cast<float>(component) / 16383.0F;
    const float part = std::pow(amount, 1.5F);
    std::vector<std::uint16_t> table(static_cast<std::size_t>(fullScale) + 1);
    for (std::int32_t i = 0; i <= fullScale; ++i) {
        const float c = static_cast<float>(i) / full;
        const float v = c + part * (mode(c, s) - c);
        table[static_cast<std::size_t>(i)] =
            static_cast<std::uint16_t>(v > 1.0F ? fullScale : (v < 0.0F ? 0 : Truncated(v * full)));
    }
    return table;
}

std::int32_t RangeWeight(std::uint32_t range, std::int32_t luma, std::int32_t fullScale) {
    switch (range) {
        case 1:
            return fullScale - 2 * luma;
        case 2:
            return fullScale - 2 * std::abs(luma - (fullScale + 1) / 2);
        case 3:
            return 2 * luma - (fullScale + 1);
        default:
            return fullScale;
    }
}

}  // namespace

std::span<const std::string_view> ColourDodgeCC::Choices(std::uint8_t code) {
    if (code == 2) return modeLabels;
    if (code == 3) return rangeLabels;
    return {};
}

ColourDodgeCC::ColourDodgeCC(bool withPaintColour) : m_withPaintColour(withPaintColour) {
    if (!withPaintColour) parameters = &ListWithoutPaintColour<ColourDodgeCC>();
}

void ColourDodgeCC::BeginRun(const Image& source) {
    if (m_withPaintColour && m_usePaintColour) m_colour = currentPaintColour;
    const std::int32_t fullScale = WithFormatOf(source, [](auto format) { return decltype(format)::fullScale; });
    const Mode mode = modes[std::min<std::size_t>(m_mode, modes.size() - 1)].mode;
    const std::array<std::uint16_t, 3> components{m_colour.blue, m_colour.green, m_colour.red};
    for (std::size_t c = 0; c < 3; ++c) m_tables[c] = ChannelTable(mode, m_amount, components[c], fullScale);
    m_scales.resize(static_cast<std::size_t>(fullScale) + 1);
    for (std::int32_t luma = 0; luma <= fullScale; ++luma) {
        const std::int32_t weight = std::max(RangeWeight(m_range, luma, fullScale), 0);
        m_scales[static_cast<std::size_t>(luma)] = static_cast<std::uint16_t>(weight + 2 * weight / (fullScale + 1));
    }
}

void ColourDodgeCC::EndRun() {
    m_tables = {};
    m_scales = {};
}

}  // namespace chalkpane
