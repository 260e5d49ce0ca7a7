#include "filters/effects/halftone_effect.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "filters/effects/colour_area.h"
#include "filters/row_filter.h"
#include "parameters/data_set.h"

namespace chalkpane {
namespace {

constexpr std::uint8_t shapeCode = 2;
constexpr std::uint8_t greenAngleCode = 5;
constexpr std::uint8_t blueAngleCode = 6;
constexpr std::array<std::string_view, 4> shapes{"Line", "Circle", "Square", "Diamond"};
enum Shape : std::uint8_t { line, circle, square, diamond };

// Far beyond what a control offers; a tile has so many rows and columns.
constexpr std::int32_t largestSize = 1000;

// u, v: -1 .. 1 across the tile.
float ShapeAt(std::uint8_t shape, float u, float v) {
    const float d = std::fabs(u) + std::fabs(v);
    switch (shape) {
        case circle:
            return 1.0F - (u * u + v * v);
        case square:
            return 1.0F - std::max(std::fabs(u), std::fabs(v));
        case diamond:
            return d <= 1.0F ? 0.25F * (2.0F * d * d) : 0.25F * (2.0F * d * d - 4.0F * (d - 1.0F) * (d - 1.0F));
        default:
            return std::fabs(v);
    }
}

std::vector<float> ShapeTile(std::uint8_t shape, std::int32_t size) {
    const auto across = [size](std::int32_t i) {
        return 2.0F * static_cast<float>(i) / static_cast<float>(size) - 1.0F;
    };
    std::vector<float> values;
    values.reserve(static_cast<std::size_t>(size) * static_cast<std::size_t>(size));
    for (std::int32_t j = 0; j < size; ++j)
        for (std::int32_t i = 0; i < size; ++i) values.push_back(ShapeAt(shape, across(i), across(j)));
    return values;
}

// Thresholds that are spread evenly: the places by descending value, and by their order where values are equal.
std::vector<std::uint8_t> RankedTile(const std::vector<float>& values) {
    std::vector<std::uint32_t> places(values.size());
    std::iota(places.begin(), places.end(), 0u);
    std::stable_sort(places.begin(), places.end(),
                     [&values](std::uint32_t a, std::uint32_t b) { return values[a] > values[b]; });
    std::vector<std::uint8_t> tile(values.size());
    for (std::size_t k = 0; k < places.size(); ++k)
        tile[places[k]] = static_cast<std::uint8_t>(k * 255 / places.size());
    return tile;
}

// Into 0 .. size, whatever the place; beyond exactness, anywhere in it.
float Within(float place, float size) {
    float within = place - size * static_cast<float>(Truncated(place / size));
    if (within < 0.0F) within += size;
    return within;
}

// KEEP: a negative place close to 0 rounds up to the size itself, which is the first row or column again.
std::size_t TileIndex(float within, std::int32_t size) {
    const std::int32_t index = Truncated(within);
    return static_cast<std::size_t>(index >= 0 && index < size ? index : 0);
}

}  // namespace

std::span<const std::string_view> HalftoneEffect::Choices(std::uint8_t code) {
    return code == shapeCode ? std::span<const std::string_view>(shapes) : std::span<const std::string_view>();
}

void HalftoneEffect::valuesChanged() {
    if (!m_values) return;
    for (const auto& value : *m_values) {
        const std::uint8_t code = value->getParameter()->code;
        if (code == greenAngleCode || code == blueAngleCode) value->setEnabled(m_colour);
    }
}

void HalftoneEffect::BeginRun(const Image& /*source*/) {
    const auto turn = [](float angle) { return Turn{std::sin(Radians(angle)), std::cos(Radians(angle))}; };
    m_red = turn(m_redAngle);
    m_green = turn(m_greenAngle);
    m_blue = turn(m_blueAngle);
    m_reach = Truncated(m_softness * 127.0F);
    m_tileSize = std::clamp(m_size, 1, largestSize);
    const auto values = ShapeTile(m_shape, m_tileSize);
    if (m_shape == circle) {
        m_tile = RankedTile(values);
        return;
    }
    m_tile.resize(values.size());
    std::transform(values.begin(), values.end(), m_tile.begin(),
                   [](float value) { return static_cast<std::uint8_t>(Truncated(value * 254.0F)); });
}

float HalftoneEffect::Screened(float level, std::int32_t x, std::int32_t y, const Turn& turn) const {
    const auto column = static_cast<float>(x);
    const auto row = static_cast<float>(y);
    const auto size = static_cast<float>(m_tileSize);
    const float p = Within(column * turn.cosine + row * turn.sine, size);
    const float q = Within(row * turn.cosine - column * turn.sine, size);
    const std::size_t place =
        TileIndex(q, m_tileSize) * static_cast<std::size_t>(m_tileSize) + TileIndex(p, m_tileSize);
    const auto threshold = static_cast<float>(m_tile[place]);
    const auto reach = static_cast<float>(m_reach);
    if (threshold + reach < level) return 255.0F;
    if (level < threshold - reach) return 0.0F;
    // KEEP: without softness a level on its threshold is 0 / 0, which is stored as 0.
    return (level - threshold) * 255.0F / (2.0F * reach);
}

void HalftoneEffect::ProcessPixel(std::int32_t x, std::int32_t y, float& /*a*/, float& r, float& g, float& b) {
    if (m_colour) {
        r = Screened(r, x, y, m_red);
        g = Screened(g, x, y, m_green);
        b = Screened(b, x, y, m_blue);
        return;
    }
    const auto luma = static_cast<std::int32_t>(r * 0.299F + g * 0.587F + b * 0.114F);
    r = g = b = Screened(static_cast<float>(luma), x, y, m_red);
}

}  // namespace chalkpane
