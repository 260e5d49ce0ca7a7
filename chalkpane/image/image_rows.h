#pragma once

#include <cstdint>
#include <span>

#include "chalkpane/image/image.h"
#include "chalkpane/image/pixel_format.h"

namespace chalkpane {

// The channels of row y of an image of that format.
template <typename F>
[[nodiscard]] std::span<typename F::Channel> ImageRow(const Image& image, std::int32_t y) {
    if constexpr (F::bits == 8)
        return image.Row8(y);
    else
        return image.Row14(y);
}

[[nodiscard]] inline std::int32_t ChannelCount(const Image& image) { return image.IsMask() ? 1 : 4; }

// Calls `function` with the pixel format of the image: function(PixelFormat8{}) or function(PixelFormat14{}).
template <typename Function>
decltype(auto) WithFormatOf(const ImageDefinition& image, Function function) {
    return image.GetDepth() == Depth::Eight ? function(PixelFormat8{}) : function(PixelFormat14{});
}

}  // namespace chalkpane
