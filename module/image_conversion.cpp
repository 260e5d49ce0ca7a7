#include "module/image_conversion.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

#include "module/gl_constants.h"

namespace chalkpane {
namespace {

constexpr std::uint8_t full = 0xFF;

std::uint8_t* ConversionBuffer(std::size_t bytes) {
    thread_local std::vector<std::uint8_t> buffer;
    if (bytes > buffer.size()) buffer.resize(bytes);
    return buffer.data();
}

const std::uint8_t* FromAlpha(const std::uint8_t* data, std::size_t pixelCount) {
    std::uint8_t* pixels = ConversionBuffer(pixelCount * 4);
    for (std::size_t i = 0; i < pixelCount; ++i) {
        std::fill_n(pixels + 4 * i, 3, full);
        pixels[4 * i + 3] = data[i];
    }
    return pixels;
}

const std::uint8_t* FromRgb(const std::uint8_t* data, std::size_t pixelCount) {
    std::uint8_t* pixels = ConversionBuffer(pixelCount * 4);
    for (std::size_t i = 0; i < pixelCount; ++i) {
        std::copy_n(data + 3 * i, 3, pixels + 4 * i);
        pixels[4 * i + 3] = full;
    }
    return pixels;
}

}  // namespace

const std::uint8_t* ConvertImageToRgba(std::int32_t format, std::int32_t width, std::int32_t height,
                                       const std::uint8_t* data) {
    if (data == nullptr || width <= 0 || height <= 0) return nullptr;
    const auto pixelCount = std::uint64_t{static_cast<std::uint32_t>(width)} * static_cast<std::uint32_t>(height);
    if (pixelCount > std::numeric_limits<std::int32_t>::max() / 4) return nullptr;
    switch (static_cast<std::uint32_t>(format)) {
        case gl::alpha:
            return FromAlpha(data, pixelCount);
        case gl::rgb:
            return FromRgb(data, pixelCount);
        case gl::rgba:
            return data;
        default:
            return nullptr;
    }
}

}  // namespace chalkpane
