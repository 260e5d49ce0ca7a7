#pragma once

#include <cstdint>
#include <span>
#include <type_traits>

#include "chalkpane/image/image.h"
#include "chalkpane/image/pixel_format.h"

namespace chalkpane::app {

// The channels of row y of an image at the format's depth.
template <typename F>
std::span<typename F::Channel> RowOf(const Image& image, std::int32_t y) {
    if constexpr (std::is_same_v<F, PixelFormat8>)
        return image.Row8(y);
    else
        return image.Row14(y);
}

// Calls `function` with the format of the image's depth.
template <typename Function>
auto AtDepth(std::int32_t depth, Function function) {
    return depth == 0 ? function(PixelFormat8()) : function(PixelFormat14());
}

}  // namespace chalkpane::app
