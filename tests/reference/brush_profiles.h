#pragma once

#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

#include "tests/reference/blending.h"

// The masks of brush profiles, pixel by pixel and the slow way: coverage in 8 bits, bottom row first.
namespace reference {

struct Shape {
    int radius;
    double flatness;
    double rotation;
    double roundness;
    int margin;
};

struct MaskGrid {
    int side;
    std::vector<int> values;
    int At(int x, int y) const {
        return values[static_cast<std::size_t>(y) * static_cast<std::size_t>(side) + static_cast<std::size_t>(x)];
    }
};

enum class Kind { Round, Graph, Feather, Texture };

inline int LowByteOf(double value) {
    if (!(value > -2147483649.0 && value < 2147483648.0)) return 0;
    return static_cast<int>(value) & 0xff;
}

// `graph`: the curve of Kind::Graph; `hardness`: of Kind::Feather.
inline MaskGrid ProfileMask(Kind kind, const Shape& shape, const std::function<double(double)>& graph,
                            double hardness) {
    const double pi = 3.141592653589793;
    MaskGrid mask{(shape.radius + shape.margin) * 2 + (kind == Kind::Texture ? 2 : 1), {}};
    const double c = mask.side * 0.5 - 0.5;
    const double edge = shape.radius + 0.5;
    const double a = -shape.rotation * pi / 180;
    const double r = shape.roundness < 0.01 ? 0.01 : shape.roundness;
    Generator generator{0};
    for (int y = 0; y < mask.side; ++y) {
        for (int x = 0; x < mask.side; ++x) {
            const double xx = x - c;
            const double yy = y - c;
            const double u = yy * std::cos(a) - xx * std::sin(a);
            const double v = (xx * std::cos(a) + yy * std::sin(a)) * shape.flatness;
            const double q =
                std::pow(std::pow(std::fabs(u) / edge, 2 / r) + std::pow(std::fabs(v) / edge, 2 / r), r / 2);
            int value = 0;
            if (kind == Kind::Round) {
                const double d = std::sqrt(u * u + v * v) / edge;
                value = LowByteOf(std::fmax(1 - d, 0) * 255 + 0.5);
            } else if (kind == Kind::Graph) {
                value = 1 - q < 0 ? 0 : LowByteOf(graph(1 - q) * 255 + 0.5);
            } else if (kind == Kind::Feather) {
                const double slope = (1 - (q - hardness) / (1 - hardness)) * 255 + 0.5;
                value = q > 1 ? 0 : q < hardness ? 255 : LowByteOf(slope);
            } else if (1 - q >= 0) {
                const float n = static_cast<float>(generator.Draw() / 32767.0);
                value = LowByteOf(double{n} * double{n} * 255 + 0.5);
            }
            mask.values.push_back(value);
        }
    }
    return mask;
}

}  // namespace reference
