#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>

#include "chalkpane/composite/brush_paster.h"
#include "chalkpane/image/image_rows.h"

namespace chalkpane::peers {

// A soft round dab in the middle of a canvas, source over target through a mask.
struct Dab {
    static constexpr int canvasSize = 1024;
    int size;
    Image colour;
    Image mask;
    Image canvas;
    BrushPaster paster;

    explicit Dab(int pixels, Depth depth = Depth::Eight)
        : size(pixels),
          colour(Image::Colour(Rect(500, 500, 499 + pixels, 499 + pixels), depth, AlphaForm::Straight)),
          mask(Image::Mask(colour.Bounds(), depth)),
          canvas(Image::Colour(canvasSize, canvasSize, depth, AlphaForm::Premultiplied)) {
        WithFormatOf(colour, [this](auto format) { Draw<decltype(format)>(); });
        colour.FillChannel(1.0);
        paster.SetOpacity(1.0);
    }

    void Paste() {
        paster.Paste(colour, &mask, canvas, PasteBehaviour::Over, colour.Bounds(), 0, nullptr, Clip::Limiting);
    }

private:
    template <typename F>
    void Draw() {
        using Channel = typename F::Channel;
        std::mt19937 random(1);
        for (std::int32_t y = colour.y0; y <= colour.y1; ++y) {
            for (auto& channel : ImageRow<F>(colour, y)) channel = static_cast<Channel>(random() & F::fullScale);
            const auto coverage = ImageRow<F>(mask, y);
            for (std::int32_t x = colour.x0; x <= colour.x1; ++x) {
                const double middle = 499.5 + size / 2.0;
                const double rest = 1.0 - std::hypot(x - middle, y - middle) / (size / 2.0);
                coverage[static_cast<std::size_t>(x - colour.x0)] =
                    static_cast<Channel>(std::clamp(rest, 0.0, 1.0) * F::fullScale);
            }
        }
    }
};

}  // namespace chalkpane::peers
