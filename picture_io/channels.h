#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "picture_io/picture.h"

namespace picture_io {

// Those of a pixel in a file.
enum class Channels : std::uint8_t { Grey, GreyAlpha, RGB, RGBA };

// The fewest that hold the picture exactly, among those wanted at least: grey where `grey` and all pixels are, no alpha
// where `opaque` and all pixels are.
template <typename Word>
[[nodiscard]] Channels FittingChannels(const BasicPicture<Word>& picture, bool grey, bool opaque) {
    constexpr auto full = static_cast<Word>(~Word{0});
    for (std::size_t i = 0; (grey || opaque) && i < picture.rgba.size(); i += 4) {
        const Word* const pixel = picture.rgba.data() + i;
        grey = grey && pixel[0] == pixel[1] && pixel[1] == pixel[2];
        opaque = opaque && pixel[3] == full;
    }
    if (grey) return opaque ? Channels::Grey : Channels::GreyAlpha;
    return opaque ? Channels::RGB : Channels::RGBA;
}

// The words of these channels alone, pixel by pixel.
template <typename Word>
[[nodiscard]] std::vector<Word> PackedWords(const BasicPicture<Word>& picture, Channels channels) {
    const bool isGrey = channels == Channels::Grey || channels == Channels::GreyAlpha;
    const bool hasAlpha = channels == Channels::GreyAlpha || channels == Channels::RGBA;
    std::vector<Word> packed;
    packed.reserve(picture.rgba.size() / 4 * ((isGrey ? 1U : 3U) + (hasAlpha ? 1U : 0U)));
    for (std::size_t i = 0; i < picture.rgba.size(); i += 4) {
        packed.push_back(picture.rgba[i]);
        if (!isGrey) {
            packed.push_back(picture.rgba[i + 1]);
            packed.push_back(picture.rgba[i + 2]);
        }
        if (hasAlpha) packed.push_back(picture.rgba[i + 3]);
    }
    return packed;
}

}  // namespace picture_io
