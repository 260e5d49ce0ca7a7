#pragma once

#include <cstddef>

#include "chalkpane/image/image.h"

namespace chalkpane {

// The pixels of one image under a region, counted from the region's lower left pixel.
template <typename Channel>
struct Plane {
    Channel* first = nullptr;      // of the lower left pixel, the first channel that counts
    std::ptrdiff_t rowStep = 0;    // channels to the row above; negative, since memory runs downward
    std::ptrdiff_t pixelStep = 0;  // channels to the pixel on the right; 0: one value for all

    [[nodiscard]] Channel* At(std::ptrdiff_t x, std::ptrdiff_t y) const { return first + y * rowStep + x * pixelStep; }
};

// The caller keeps the region inside the image, and names the image's channel type.
template <typename Channel>
Plane<Channel> PlaneOf(const Image& image, const Rect& region, std::ptrdiff_t firstChannel = 0) {
    constexpr auto channelBytes = static_cast<std::ptrdiff_t>(sizeof(Channel));
    return {reinterpret_cast<Channel*>(image.Address(region.x0, region.y0)) + firstChannel,
            -std::ptrdiff_t{image.rowBytes} / channelBytes, std::ptrdiff_t{image.pixelBytes} / channelBytes};
}

// Coverage: the only channel of a mask, alpha of anything else.
template <typename Channel>
Plane<const Channel> CoveragePlaneOf(const Image& image, const Rect& region) {
    return PlaneOf<const Channel>(image, region, image.IsMask() ? 0 : 3);
}

}  // namespace chalkpane
