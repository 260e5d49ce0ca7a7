#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bench/peers/peer_work.h"
#include "chalkpane/filters/filter_registry.h"
#include "chalkpane/image/image_rows.h"
#include "tests/chalkpane/filters/filter_pictures.h"

namespace chalkpane::peers {

// Opaque pictures of one size for the filters and their peers.
inline constexpr std::int32_t pictureSize = 1024;
inline constexpr Rect pictureArea{0, 0, pictureSize - 1, pictureSize - 1};

inline Image NoisePicture(Depth depth) {
    Image picture = test::NoisePicture(pictureArea, PixelType::Colour, depth, AlphaForm::Straight, 20261121);
    picture.FillChannel(1.0);
    return picture;
}

// Waves of a few dozen pixels: hard on no one, and told apart from itself elsewhere.
inline Image WavePicture(Depth depth) {
    Image picture = Image::Colour(pictureArea, depth, AlphaForm::Straight);
    WithFormatOf(picture, [&](auto format) {
        using F = decltype(format);
        for (std::int32_t y = picture.y0; y <= picture.y1; ++y) {
            const auto row = ImageRow<F>(picture, y);
            for (std::size_t i = 0; i < row.size(); ++i) {
                const std::size_t pixel = i / 4;
                const double wave = std::sin(static_cast<double>(pixel) * 0.11) * std::cos(y * 0.07 + 0.5);
                row[i] = static_cast<typename F::Channel>((0.5 + 0.45 * wave) * F::fullScale);
            }
        }
    });
    picture.FillChannel(1.0);
    return picture;
}

// Of the upper left pixel, where memory begins.
inline std::byte* FirstByte(const Image& image) { return image.Address(image.x0, image.y1); }

// The mean difference of the colours of two pictures that lie in memory as images do, in levels of 255; alpha is not
// looked at, which some peers treat as a colour.
template <typename F>
double ColourDifference(const typename F::Channel* a, const typename F::Channel* b) {
    const std::size_t channels = std::size_t{4} * pictureSize * pictureSize;
    double sum = 0.0;
    for (std::size_t i = 0; i < channels; ++i)
        if (i % 4 != 3) sum += std::abs(a[i] - b[i]);
    return sum * 255.0 / F::fullScale / (static_cast<double>(channels) * 0.75);
}

// A filter with its settings, its picture and what it made of it.
struct OurFilter {
    using Settings = std::vector<std::pair<std::string_view, double>>;

    std::unique_ptr<Filter> filter;
    Image picture;
    std::unique_ptr<Image> result;

    OurFilter(std::string_view label, const Settings& settings, const Image& source) : picture(source) {
        for (const Filter* prototype : FilterRegistry::Instance().Filters())
            if (prototype->Label() == label) filter = prototype->CreateNew();
        for (const auto& [name, value] : settings) test::SetNumber(*filter, name, value);
        filter->Advance(&picture, 1, 0, 0, 0, 0);
    }
    void Apply() {
        result.reset();
        filter->Apply(picture, result, false, nullptr, false);
    }
};

}  // namespace chalkpane::peers
