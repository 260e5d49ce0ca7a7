#include "kel/scene/seen_size.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kel {
namespace {

// Below the square root of two, from which on smaller copies of a picture are mixed in (scene_renderer.cpp), with room
// for how roughly OpenGL may measure.
constexpr double mostPixels = 1.2;

struct Steps {
    double across = 0;  // window pixels, right and up, for a step of one picture pixel
    double up = 0;
};

// Where the container's point (x, y) goes, as the unit cube has it: x, y and w.
std::array<double, 3> Projected(const Matrix& m, double x, double y) {
    return {m[0] * x + m[4] * y + m[12], m[1] * x + m[5] * y + m[13], m[3] * x + m[7] * y + m[15]};
}

// How the place changes with one of the two coordinates: the derivative of x / w and y / w.
Steps StepsAlong(const Matrix& m, std::size_t column, const std::array<double, 3>& at, double length,
                 ImageSize window) {
    const double w = at[2];
    const double across = (m[column] * w - at[0] * m[column + 3]) / (w * w);
    const double up = (m[column + 1] * w - at[1] * m[column + 3]) / (w * w);
    return {across * length * window.width / 2, up * length * window.height / 2};
}

// The most picture pixels that a step of one window pixel passes over there.
double PixelsAt(const Matrix& m, const std::array<double, 3>& at, const std::array<double, 2>& pixel,
                ImageSize window) {
    const Steps right = StepsAlong(m, 0, at, pixel[0], window);
    const Steps up = StepsAlong(m, 4, at, pixel[1], window);
    const double area = std::abs(right.across * up.up - right.up * up.across);
    const double longest = std::max(std::hypot(up.up, right.up), std::hypot(up.across, right.across));
    return longest / area;
}

}  // namespace

bool IsSeenSmall(ImageSize picture, const Placement& container, const Matrix& camera, ImageSize window) {
    const Matrix m = camera * WorldMatrix(container);
    const std::array<double, 2> pixel{container.size[0] / picture.width, container.size[1] / picture.height};
    for (const double x : {-0.5, 0.5})
        for (const double y : {-0.5, 0.5}) {
            const auto at = Projected(m, x * container.size[0], y * container.size[1]);
            // Behind the camera, or with no size at all, nothing is told; NaN is not smaller either.
            if (!(at[2] > 0) || !(PixelsAt(m, at, pixel, window) <= mostPixels)) return true;
        }
    return false;
}

}  // namespace kel
