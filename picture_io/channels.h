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

}  // namespace picture_io
