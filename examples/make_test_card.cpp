// Draws the two pictures of examples/test-card.json and writes them as PNG:  make_test_card CARD.png FRONT.png
//
// The card holds what a composited stroke can be wrong on: bars of full colours, ramps from black to white and between
// colours, plain black and plain white. The front is a disc with a soft edge that hides a part of the strokes behind
// it.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <exception>

#include "picture_io/picture.h"

namespace {

using Pixel = std::array<std::uint8_t, 4>;

constexpr int cardWidth = 320;  // pixels
constexpr int cardHeight = 180;
constexpr int frontSide = 64;
constexpr double frontRadius = 28.0;
constexpr double softEdge = 6.0;  // pixels, inwards from the radius

std::uint8_t Level(double level) { return static_cast<std::uint8_t>(std::clamp(level, 0.0, 255.0) + 0.5); }

Pixel Bar(int column) {
    constexpr auto bars = std::to_array<Pixel>({{255, 255, 255, 255},
                                                {255, 255, 0, 255},
                                                {0, 255, 255, 255},
                                                {0, 255, 0, 255},
                                                {255, 0, 255, 255},
                                                {255, 0, 0, 255},
                                                {0, 0, 255, 255},
                                                {0, 0, 0, 255}});
    return bars[static_cast<std::size_t>(column) * bars.size() / cardWidth];
}

Pixel CardAt(int column, int row) {
    const double along = column / (cardWidth - 1.0);
    const std::uint8_t rising = Level(255 * along);
    const std::uint8_t falling = Level(255 * (1 - along));
    if (row < 60) return Bar(column);
    if (row < 90) return {rising, rising, rising, 255};
    if (row < 120) return {rising, falling, 128, 255};
    if (row < 150) return {falling, Level(255 * std::abs(2 * along - 1)), rising, 255};
    const std::uint8_t half = column < cardWidth / 2 ? 0 : 255;
    return {half, half, half, 255};
}

Pixel FrontAt(int column, int row) {
    const double fromCentre = std::hypot(column + 0.5 - frontSide / 2.0, row + 0.5 - frontSide / 2.0);
    return {32, 96, 160, Level(255 * (frontRadius - fromCentre) / softEdge)};
}

template <typename PixelAt>
void Write(const char* file, int width, int height, PixelAt pixelAt) {
    picture_io::Picture picture(width, height);
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column) picture.Set(column, row, pixelAt(column, row));
    picture_io::WritePicture(picture, file);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: make_test_card CARD.png FRONT.png\n", stderr);
        return 2;
    }
    try {
        Write(argv[1], cardWidth, cardHeight, CardAt);
        Write(argv[2], frontSide, frontSide, FrontAt);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make_test_card: %s\n", error.what());
        return 2;
    }
    return 0;
}
