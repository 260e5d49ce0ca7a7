#include "kel/video/picture_orientation.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace kel {
namespace {

// The matrix leads stored pixels (x, y), y downwards, to shown ones: x' = a x + c y, y' = b x + d y.
PictureOrientation NearestOrientation(std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d) {
    const auto magnitude = [](std::int32_t number) { return std::abs(static_cast<std::int64_t>(number)); };
    const bool isAlongAxes = magnitude(a) + magnitude(d) >= magnitude(b) + magnitude(c);
    const std::int32_t x = isAlongAxes ? a : c;
    const std::int32_t y = isAlongAxes ? d : b;
    if (x == 0 || y == 0) return {};
    return {!isAlongAxes, x < 0, y < 0};
}

}  // namespace

PictureOrientation OrientationOf(const AVStream& stream) {
    std::size_t bytes = 0;
    const std::uint8_t* data = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &bytes);
    std::array<std::int32_t, 9> matrix{};
    if (data == nullptr || bytes < sizeof matrix) return {};
    std::memcpy(matrix.data(), data, sizeof matrix);
    return NearestOrientation(matrix[0], matrix[1], matrix[3], matrix[4]);
}

picture_io::Picture Upright(picture_io::Picture picture, const PictureOrientation& orientation) {
    if (orientation.IsUpright()) return picture;
    std::int32_t width = picture.width;
    std::int32_t height = picture.height;
    if (orientation.exchangesAxes) std::swap(width, height);
    picture_io::Picture upright(width, height);
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x) {
            std::int32_t fromX = orientation.reversesColumns ? width - 1 - x : x;
            std::int32_t fromY = orientation.reversesRows ? height - 1 - y : y;
            if (orientation.exchangesAxes) std::swap(fromX, fromY);
            upright.Set(x, y, picture.At(fromX, fromY));
        }
    return upright;
}

}  // namespace kel
