#include "kel/scene/overlay_picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "kel/scene/scene_renderer.h"

namespace kel {
namespace {

using Levels = std::array<int, 3>;  // red, green and blue, 0 .. 255

struct LayerPixel {
    Levels colour{};  // multiplied by alpha
    int alpha = 0;
};

Levels LevelsAt(const picture_io::Picture& picture, std::size_t pixel) {
    return {picture.rgba[pixel], picture.rgba[pixel + 1], picture.rgba[pixel + 2]};
}

double Composited(int base, int colour, int alpha) { return base * (255 - alpha) / 255.0 + colour; }

// With colour c and alpha a, black becomes c and white becomes c + 1 - a, in each channel. The three answers for alpha
// differ by rounding alone, so their mean is the best of them, and no colour may be above it.
LayerPixel BetweenBlackAndWhite(const Levels& overBlack, const Levels& overWhite) {
    int alphas = 0;
    for (std::size_t channel = 0; channel < 3; ++channel) alphas += 255 - (overWhite[channel] - overBlack[channel]);
    return {overBlack, std::clamp((alphas + 1) / 3, *std::ranges::max_element(overBlack), 255)};
}

bool Explains(const LayerPixel& layer, const Levels& undrawn, const Levels& drawn) {
    constexpr double rounding = 1.0;
    for (std::size_t channel = 0; channel < 3; ++channel)
        if (std::abs(Composited(undrawn[channel], layer.colour[channel], layer.alpha) - drawn[channel]) > rounding)
            return false;
    return true;
}

// The least alpha by which a layer can turn the one into the other: as black as it must darken, as white as it must
// lighten.
int LeastAlpha(const Levels& undrawn, const Levels& drawn) {
    double least = 0.0;
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const int change = drawn[channel] - undrawn[channel];
        const int room = change < 0 ? undrawn[channel] : 255 - undrawn[channel];
        if (change != 0) least = std::max(least, std::abs(change) * 255.0 / room);
    }
    return static_cast<int>(std::ceil(least));
}

// Where something half clear stands before a drawing or behind it in the same container, a drawing changes more than
// any one layer can tell for all pictures. Then the layer is made for this picture.
LayerPixel MadeFor(const Levels& undrawn, const Levels& drawn, int alpha) {
    LayerPixel layer;
    layer.alpha = std::max(alpha, LeastAlpha(undrawn, drawn));
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const double missing = drawn[channel] - Composited(undrawn[channel], 0, layer.alpha);
        layer.colour[channel] = std::clamp(static_cast<int>(std::lround(missing)), 0, layer.alpha);
    }
    return layer;
}

bool IsPixel(const picture_io::Picture& picture, std::size_t at, const std::array<std::uint8_t, 4>& wanted) {
    return std::equal(wanted.begin(), wanted.end(), picture.rgba.begin() + static_cast<std::ptrdiff_t>(at));
}

// Most pixels are: nothing was drawn there.
bool IsUntouched(const OverlaySources& sources, std::size_t pixel) {
    const auto* const undrawn = &sources.undrawn.rgba[pixel];
    return IsPixel(sources.overBlack, pixel, {0, 0, 0, 255}) &&
           IsPixel(sources.overWhite, pixel, {255, 255, 255, 255}) &&
           std::equal(undrawn, undrawn + 3, &sources.drawn.rgba[pixel]);
}

picture_io::Picture Drawn(HostState& state, Look look, const FrameArea& area) {
    DrawAgain(state, *state.overlay.target, look, area);
    return state.overlay.target->Read(area);
}

// Copies a part into the picture; the area counts from the lower left corner.
void Place(const picture_io::Picture& part, const FrameArea& area, picture_io::Picture& whole) {
    const std::ptrdiff_t rowBytes = std::ptrdiff_t{area.width} * 4;
    const std::ptrdiff_t stride = std::ptrdiff_t{whole.width} * 4;
    const std::ptrdiff_t start = (whole.height - area.y - area.height) * stride + std::ptrdiff_t{area.x} * 4;
    for (std::ptrdiff_t row = 0; row < area.height; ++row)
        std::copy_n(part.rgba.begin() + row * rowBytes, rowBytes, whole.rgba.begin() + start + row * stride);
}

void Clear(const FrameArea& area, picture_io::Picture& picture) {
    const std::ptrdiff_t stride = std::ptrdiff_t{picture.width} * 4;
    for (std::ptrdiff_t row = 0; row < area.height; ++row)
        std::fill_n(picture.rgba.begin() + (picture.height - 1 - area.y - row) * stride + std::ptrdiff_t{area.x} * 4,
                    std::ptrdiff_t{area.width} * 4, std::uint8_t{0});
}

// Those that are kept, if nothing has changed of the drawings; none is kept any more.
DrawnOverlay::OverPlain OverPlain(HostState& state, const FrameArea& area) {
    std::optional<DrawnOverlay::OverPlain> kept = std::exchange(state.overlay.overPlain, std::nullopt);
    const std::uint64_t drawings = state.changes.Drawings();
    if (kept && kept->area == area && kept->drawings == drawings) return std::move(*kept);
    return {area, drawings, Drawn(state, Look::Black, area), Drawn(state, Look::White, area)};
}

void RenewOverlay(HostState& state, const FrameArea& area) {
    if (area.IsEmpty()) return;
    OverlaySources sources;
    sources.drawn = state.frame->Read(area);
    sources.undrawn = Drawn(state, Look::Undrawn, area);
    DrawnOverlay::OverPlain plain = OverPlain(state, area);
    sources.overBlack = std::move(plain.black);
    sources.overWhite = std::move(plain.white);
    Place(OverlayOf(sources), area, state.overlay.picture);
    if (state.overlay.copied == noObject) return;  // behind another picture they might not be the same
    plain.black = std::move(sources.overBlack);
    plain.white = std::move(sources.overWhite);
    state.overlay.overPlain = std::move(plain);
}

}  // namespace

picture_io::Picture OverlayOf(const OverlaySources& sources) {
    picture_io::Picture overlay(sources.drawn.width, sources.drawn.height);
    for (std::size_t pixel = 0; pixel < overlay.rgba.size(); pixel += 4) {
        if (IsUntouched(sources, pixel)) continue;
        const Levels undrawn = LevelsAt(sources.undrawn, pixel);
        const Levels drawn = LevelsAt(sources.drawn, pixel);
        LayerPixel layer = BetweenBlackAndWhite(LevelsAt(sources.overBlack, pixel), LevelsAt(sources.overWhite, pixel));
        if (!Explains(layer, undrawn, drawn)) layer = MadeFor(undrawn, drawn, layer.alpha);
        for (std::size_t channel = 0; channel < 3; ++channel)
            overlay.rgba[pixel + channel] = static_cast<std::uint8_t>(layer.colour[channel]);
        overlay.rgba[pixel + 3] = static_cast<std::uint8_t>(layer.alpha);
    }
    return overlay;
}

const picture_io::Picture& OverlayPicture(HostState& state) {
    const FrameArea whole{0, 0, state.window.width, state.window.height};
    DrawnOverlay& overlay = state.overlay;
    if (!overlay.target) {
        overlay.target = std::make_unique<FrameBuffer>(whole.width, whole.height);
        overlay.picture = picture_io::Picture(whole.width, whole.height);
        overlay.stale = whole;
    }
    // What has changed since the picture was drawn is in the textures already, wherever it is seen.
    const bool isBehind = state.changes.IsEverything() || !state.changes.Area().IsEmpty();
    if (isBehind) {
        RenewOverlay(state, whole);
    } else {
        Clear(overlay.stale, overlay.picture);
        RenewOverlay(state, Intersection(overlay.stale, overlay.inked));
    }
    overlay.stale = isBehind ? whole : FrameArea{};
    return overlay.picture;
}

}  // namespace kel
