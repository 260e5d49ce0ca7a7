#include "chalkpane/filters/effects/halftone_effect.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "chalkpane/filters/effects/colour_area.h"
#include "chalkpane/filters/row_filter.h"
#include "chalkpane/parameters/data_set.h"

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

// Differences of a whole level and a threshold. Words above full scale make levels of up to 1020.
constexpr std::int32_t lowestDifference = -255;
constexpr std::int32_t largestDifference = 1024;

// Into 0 .. size; what lies too far away for whole numbers ends up anywhere in it, as an index of 0.
template <bool far>
[[gnu::always_inline]] inline std::int32_t TileIndex(float place, float size) {
    const float ratio = place / size;
    const std::int32_t tiles = far ? Truncated(ratio) : static_cast<std::int32_t>(ratio);
    const float left = place - size * static_cast<float>(tiles);
    const float within = left + (left < 0.0F ? size : 0.0F);
    const std::int32_t index = far ? Truncated(within) : static_cast<std::int32_t>(within);
    // KEEP: a negative place close to 0 rounds up to the size itself, which is the first row or column again.
    return index >= 0 && index < static_cast<std::int32_t>(size) ? index : 0;
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

void HalftoneEffect::BeginRun(const Image& source) {
    const auto turn = [](float angle) { return Turn{std::sin(Radians(angle)), std::cos(Radians(angle))}; };
    m_red = turn(m_redAngle);
    m_green = turn(m_greenAngle);
    m_blue = turn(m_blueAngle);
    m_greyRadius = Truncated(m_softness * 127.0F);
    m_tileSize = std::clamp(m_size, 1, largestSize);
    m_shades.clear();
    for (std::int32_t difference = lowestDifference; difference <= largestDifference; ++difference) {
        const float shade = Screened(static_cast<float>(difference), 0);
        m_shades.push_back(static_cast<std::uint16_t>(source.GetDepth() == Depth::Eight
                                                          ? FromByteScale<PixelFormat8>(shade)
                                                          : FromByteScale<PixelFormat14>(shade)));
    }
    const auto values = ShapeTile(m_shape, m_tileSize);
    if (m_shape == circle) {
        m_tile = RankedTile(values);
        return;
    }
    m_tile.resize(values.size());
    std::transform(values.begin(), values.end(), m_tile.begin(),
                   [](float value) { return static_cast<std::uint8_t>(Truncated(value * 254.0F)); });
}

float HalftoneEffect::Screened(float level, std::int32_t threshold) const {
    const auto middle = static_cast<float>(threshold);
    const auto radius = static_cast<float>(m_greyRadius);
    if (middle + radius < level) return 255.0F;
    if (level < middle - radius) return 0.0F;
    // KEEP: without softness a level on its threshold is 0 / 0, which is stored as 0.
    return (level - middle) * 255.0F / (2.0F * radius);
}

template <bool far>
[[gnu::always_inline]] inline void HalftoneEffect::Places(std::int32_t x, std::int32_t y, std::size_t count,
                                                          const Turn& turn, Block& places) const {
    const auto row = static_cast<float>(y);
    const auto size = static_cast<float>(m_tileSize);
    const float sine = turn.sine;
    const float cosine = turn.cosine;
    for (std::size_t i = 0; i < count; ++i) {
        const auto column = static_cast<float>(x + static_cast<std::int32_t>(i));
        const std::int32_t p = TileIndex<far>(column * cosine + row * sine, size);
        const std::int32_t q = TileIndex<far>(row * cosine - column * sine, size);
        places[i] = q * m_tileSize + p;
    }
}

void HalftoneEffect::Thresholds(std::int32_t x, std::int32_t y, std::size_t count, const Turn& turn,
                                Block& thresholds) const {
    constexpr std::int32_t nearby = 1 << 28;
    const bool far = x < -nearby || x > nearby || y < -nearby || y > nearby ||
                     !(std::fabs(turn.sine) <= 1.0F && std::fabs(turn.cosine) <= 1.0F);
    far ? Places<true>(x, y, count, turn, thresholds) : Places<false>(x, y, count, turn, thresholds);
    for (std::size_t i = 0; i < count; ++i) thresholds[i] = m_tile[static_cast<std::size_t>(thresholds[i])];
}

template <typename F>
void HalftoneEffect::GreyBlock(std::int32_t x, std::int32_t y, std::span<typename F::Channel> pixels) const {
    const std::size_t count = pixels.size() / 4;
    Block thresholds;
    Block lumas;
    Thresholds(x, y, count, m_red, thresholds);
    for (std::size_t i = 0; i < count; ++i) {
        const auto pixel = detail::PixelWords<F>::Load(&pixels[4 * i]);
        lumas[i] =
            static_cast<std::int32_t>(ToByteScale<F>(pixel.Red()) * 0.299F + ToByteScale<F>(pixel.Green()) * 0.587F +
                                      ToByteScale<F>(pixel.Blue()) * 0.114F);
    }
    for (std::size_t i = 0; i < count; ++i)
        lumas[i] = m_shades[static_cast<std::size_t>(lumas[i] - thresholds[i] - lowestDifference)];
    const std::int32_t* shade = lumas.data();
    ForEachColour<F>(pixels, [&shade](auto& blue, auto& green, auto& red, auto& alpha) {
        blue = green = red = *shade++;
        alpha = FromByteScale<F>(ToByteScale<F>(alpha));
    });
}

template <typename F>
void HalftoneEffect::ColourBlock(std::int32_t x, std::int32_t y, std::span<typename F::Channel> pixels) const {
    const std::size_t count = pixels.size() / 4;
    Block thresholds;
    const std::array turns{&m_blue, &m_green, &m_red};
    for (std::size_t c = 0; c < turns.size(); ++c) {
        Thresholds(x, y, count, *turns[c], thresholds);
        for (std::size_t i = 0; i < count; ++i) {
            auto& channel = pixels[4 * i + c];
            if constexpr (F::bits == 8)  // whole levels
                channel = static_cast<typename F::Channel>(
                    m_shades[static_cast<std::size_t>(channel - thresholds[i] - lowestDifference)]);
            else  // KEEP: at 14 bits a level keeps its fraction here, while the luma of grey mode is truncated
                channel = static_cast<typename F::Channel>(
                    FromByteScale<F>(Screened(ToByteScale<F>(channel), thresholds[i])));
        }
    }
    ForEachColour<F>(pixels, [](auto&, auto&, auto&, auto& alpha) { alpha = FromByteScale<F>(ToByteScale<F>(alpha)); });
}

template <typename F>
void HalftoneEffect::Row(std::int64_t x, std::int32_t y, std::span<typename F::Channel> pixels) const {
    for (; pixels.size() >= 4; pixels = pixels.subspan(std::min(4 * block, pixels.size()))) {
        const auto part = pixels.first(std::min(4 * block, pixels.size()));
        m_colour ? ColourBlock<F>(static_cast<std::int32_t>(x), y, part)
                 : GreyBlock<F>(static_cast<std::int32_t>(x), y, part);
        x += static_cast<std::int64_t>(part.size() / 4);
    }
}

void HalftoneEffect::ProcessRow16(std::int32_t firstX, std::int32_t /*lastX*/, std::int32_t y,
                                  std::span<std::uint16_t> pixels) {
    Row<PixelFormat14>(firstX, y, pixels);
}

void HalftoneEffect::ProcessRow8(std::int32_t firstX, std::int32_t /*lastX*/, std::int32_t y,
                                 std::span<std::uint8_t> pixels) {
    Row<PixelFormat8>(firstX, y, pixels);
}

}  // namespace chalkpane
