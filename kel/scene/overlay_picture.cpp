#include "kel/scene/overlay_picture.h"

#include <algorithm>
#include <array>
#include <cmath>
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

picture_io::Picture Rendered(HostState& state, const FrameBuffer& target, Look look) {
    RenderScene(state, target, look);
    return target.Read();
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

picture_io::Picture OverlayPicture(HostState& state, AlphaForm form) {
    const FrameBuffer target(state.window.width, state.window.height);
    const bool drawing = std::exchange(state.drawing, true);
    OverlaySources sources;
    sources.drawn = state.frame->Read();
    sources.undrawn = Rendered(state, target, Look::Undrawn);
    sources.overBlack = Rendered(state, target, Look::Black);
    sources.overWhite = Rendered(state, target, Look::White);
    state.drawing = drawing;
    picture_io::Picture overlay = OverlayOf(sources);
    return form == AlphaForm::Straight ? picture_io::DividedByAlpha(std::move(overlay)) : overlay;
}

}  // namespace kel
