#pragma once

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <string_view>

#include "picture_io/picture.h"

// What the programs that draw the examples' pictures share.

namespace examples {

struct Colour {
    double red = 0.0, green = 0.0, blue = 0.0;  // 0 .. 255
};

inline Colour Mix(const Colour& from, const Colour& to, double share) {
    return {from.red + (to.red - from.red) * share, from.green + (to.green - from.green) * share,
            from.blue + (to.blue - from.blue) * share};
}

inline bool Between(double value, double low, double high) { return value >= low && value <= high; }

inline bool InDisc(double x, double y, double centreX, double centreY, double radius) {
    return std::hypot(x - centreX, y - centreY) <= radius;
}

// The colour of a place of the picture, in pixels from its top left corner, y downwards.
using ColourAt = Colour (*)(double column, double row);

// The mean of sixteen places of a pixel of the picture, which is drawn that many times as large.
inline Colour Sampled(ColourAt colourAt, int column, int row, int enlarged) {
    constexpr int samplesPerSide = 4;
    Colour sum;
    for (int i = 0; i < samplesPerSide * samplesPerSide; ++i) {
        const Colour sample = colourAt((column + (i % samplesPerSide + 0.5) / samplesPerSide) / enlarged,
                                       (row + (i / samplesPerSide + 0.5) / samplesPerSide) / enlarged);
        sum = {sum.red + sample.red, sum.green + sample.green, sum.blue + sample.blue};
    }
    return Mix({}, sum, 1.0 / (samplesPerSide * samplesPerSide));
}

// The whole of a program that draws one picture:  PROGRAM OUT.png [TIMES]  with TIMES from 1 to 9, how much larger.
inline int WriteSampledPicture(int argc, char** argv, const char* program, int width, int height, ColourAt colourAt) {
    const std::string_view times = argc == 3 ? argv[2] : "1";
    if (argc < 2 || argc > 3 || times.size() != 1 || times[0] < '1' || times[0] > '9') {
        std::fprintf(stderr, "usage: %s OUT.png [1 .. 9, how many times as large]\n", program);
        return 2;
    }
    const int enlarged = times[0] - '0';
    try {
        picture_io::Picture picture(width * enlarged, height * enlarged);
        for (int row = 0; row < picture.height; ++row) {
            for (int column = 0; column < picture.width; ++column) {
                const Colour colour = Sampled(colourAt, column, row, enlarged);
                const auto byte = [](double level) { return static_cast<std::uint8_t>(level + 0.5); };
                picture.Set(column, row, {byte(colour.red), byte(colour.green), byte(colour.blue), 255});
            }
        }
        picture_io::WritePicture(picture, argv[1]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", program, error.what());
        return 2;
    }
    return 0;
}

}  // namespace examples
