#include "kel/replay/replay_picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace kel {
namespace {

using chalkpane::Image;
using chalkpane::Rect;

constexpr int fractionBits = 8;
constexpr std::uint32_t one = 1U << fractionBits;

// Between two neighbouring pixels of an axis: the first of them, the other, and how far on from the first.
struct Between {
    std::int32_t first = 0;
    std::int32_t second = 0;
    std::uint32_t fraction = 0;  // of `one`
};

// Where a place on an axis of `length` lies on the canvas's axis of `canvasLength` pixels. place: 0.5 is the middle of
// the first pixel.
Between PlaceOn(double place, std::int32_t length, std::int32_t canvasLength) {
    const double at = std::clamp(place * canvasLength / length - 0.5, 0.0, canvasLength - 1.0);
    const auto first = static_cast<std::int32_t>(at);
    return {first, std::min(first + 1, canvasLength - 1), static_cast<std::uint32_t>((at - first) * one)};
}

// A picture smaller than the canvas takes the mean of so many places of each pixel, so that no thin line is lost.
std::int32_t PlacesPerPixel(std::int32_t length, std::int32_t canvasLength) {
    return std::max(1, (canvasLength + length - 1) / length);
}

std::vector<Between> PlacesOf(std::int32_t pixel, std::int32_t length, std::int32_t canvasLength) {
    std::vector<Between> places;
    const std::int32_t count = PlacesPerPixel(length, canvasLength);
    places.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i) places.push_back(PlaceOn(pixel + (i + 0.5) / count, length, canvasLength));
    return places;
}

using Sum = std::array<std::uint32_t, 4>;

// Red first, as the canvas is shown; rows of the canvas count downwards in the picture.
void AddPlace(const Image& canvas, const Between& x, const Between& y, Sum& sum) {
    const auto corner = [&](std::int32_t column, std::int32_t row) {
        return canvas.Address(canvas.x0 + column, canvas.y0 + row);
    };
    const std::byte* const a = corner(x.first, y.first);
    const std::byte* const b = corner(x.second, y.first);
    const std::byte* const c = corner(x.first, y.second);
    const std::byte* const d = corner(x.second, y.second);
    for (std::size_t i = 0; i < 4; ++i) {
        const auto mix = [&](const std::byte* left, const std::byte* right) {
            return static_cast<std::uint32_t>(left[i]) * (one - x.fraction) +
                   static_cast<std::uint32_t>(right[i]) * x.fraction;
        };
        sum[i] += (mix(a, b) * (one - y.fraction) + mix(c, d) * y.fraction + one * one / 2) >> (2 * fractionBits);
    }
}

// The pixels of an axis that show the canvas's pixels from `first` to `last`.
std::array<std::int32_t, 2> PixelsShowing(std::int32_t first, std::int32_t last, std::int32_t length,
                                          std::int32_t canvasLength) {
    const double scale = static_cast<double>(length) / canvasLength;
    return {std::max(0, static_cast<std::int32_t>(std::floor((first - 1) * scale)) - 1),
            std::min(length - 1, static_cast<std::int32_t>(std::ceil((last + 2) * scale)) + 1)};
}

std::uint8_t Mixed(std::uint8_t ink, std::uint8_t under, int cover) {
    return static_cast<std::uint8_t>(std::min(255, ink + (under * (255 - cover) + 127) / 255));
}

}  // namespace

ReplayPicture::ReplayPicture(WindowSize size) : m_ink(size.width, size.height), m_background(size.width, size.height) {}

std::shared_ptr<const picture_io::Picture> ReplayPicture::SharedInk() {
    Copy& copy = m_copies[0].picture.use_count() > 1 ? m_copies[1] : m_copies[0];
    if (!copy.picture || copy.picture.use_count() > 1) {
        copy = {std::make_shared<picture_io::Picture>(m_ink), {}};
        return copy.picture;
    }
    const PicturePart stale = std::exchange(copy.stale, {});
    for (std::int32_t y = stale.y; y < stale.y + stale.height; ++y) {
        const auto first = (std::ptrdiff_t{y} * m_ink.width + stale.x) * 4;
        std::copy_n(m_ink.rgba.begin() + first, std::ptrdiff_t{stale.width} * 4, copy.picture->rgba.begin() + first);
    }
    return copy.picture;
}

PicturePart ReplayPicture::TakeInk(const Image& canvas, const Rect& changed) {
    const Rect area = changed.Intersection(canvas);
    if (!area.IsValid()) return {};
    const auto columns = PixelsShowing(area.x0 - canvas.x0, area.x1 - canvas.x0, m_ink.width, canvas.Width());
    const auto rows = PixelsShowing(area.y0 - canvas.y0, area.y1 - canvas.y0, m_ink.height, canvas.Height());
    std::vector<std::vector<Between>> places;
    for (std::int32_t x = columns[0]; x <= columns[1]; ++x) places.push_back(PlacesOf(x, m_ink.width, canvas.Width()));
    for (std::int32_t y = rows[0]; y <= rows[1]; ++y) {
        const std::vector<Between> down = PlacesOf(y, m_ink.height, canvas.Height());
        for (std::int32_t x = columns[0]; x <= columns[1]; ++x) {
            const std::vector<Between>& across = places[static_cast<std::size_t>(x - columns[0])];
            Sum sum{};
            for (const Between& placeY : down)
                for (const Between& placeX : across) AddPlace(canvas, placeX, placeY, sum);
            const auto count = static_cast<std::uint32_t>(down.size() * across.size());
            std::array<std::uint8_t, 4> pixel{};
            for (std::size_t i = 0; i < 4; ++i) pixel[i] = static_cast<std::uint8_t>((sum[i] + count / 2) / count);
            m_ink.Set(x, y, pixel);
        }
    }
    const PicturePart part{columns[0], rows[0], columns[1] - columns[0] + 1, rows[1] - rows[0] + 1};
    for (Copy& copy : m_copies) copy.stale = copy.stale.With(part);
    return part;
}

void ReplayPicture::SetBackground(const picture_io::Picture& background) {
    m_background = background;
    for (std::size_t i = 0; i < m_background.rgba.size(); i += 4) {
        const int cover = m_background.rgba[i + 3];
        for (std::size_t channel = 0; channel < 3; ++channel) {
            std::uint8_t& value = m_background.rgba[i + channel];
            value = static_cast<std::uint8_t>((value * cover + 127) / 255);
        }
    }
}

picture_io::Picture ReplayPicture::OverBackground() const {
    picture_io::Picture shown = m_background;
    for (std::size_t i = 0; i < shown.rgba.size(); i += 4) {
        const int cover = m_ink.rgba[i + 3];
        for (std::size_t channel = 0; channel < 3; ++channel)
            shown.rgba[i + channel] = Mixed(m_ink.rgba[i + channel], shown.rgba[i + channel], cover);
        shown.rgba[i + 3] = 255;
    }
    return shown;
}

}  // namespace kel
