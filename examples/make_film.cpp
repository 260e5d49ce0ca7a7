// Draws a passage of play from above, and writes it to each file as its ending says:  make_film OUT.mp4 OUT.mkv ...
//
// Four seconds, 25 frames each, of 640 by 360: discs in two colours run over a pitch, and a ball among them. The
// squares in the top left corner count: eight of them, white for one and black for nought, the highest first, say the
// number of the frame also after a lossy codec, so that whoever shows the film can be checked to the frame.

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <numbers>
#include <vector>

#include "examples/sampled_picture.h"
#include "kel/video/video_writer.h"

namespace {

constexpr int width = 640;  // pixels
constexpr int height = 360;
constexpr int frames = 100;
constexpr double framesPerSecond = 25.0;

using examples::Colour;
using examples::Mix;

// A runner goes once around its ellipse in so many seconds.
struct Runner {
    double x, y;  // pixels, the middle of the ellipse
    double across, along;
    double seconds;
    double start;  // share of a round
    double radius;
    Colour colour;
};

constexpr Colour red{208, 36, 40};
constexpr Colour blue{32, 74, 190};
constexpr Colour white{250, 250, 250};
constexpr auto runners = std::to_array<Runner>({{150, 120, 60, 30, 6, 0.0, 11, red},
                                                {260, 240, 80, 40, 5, 0.3, 11, red},
                                                {420, 110, 70, 50, 7, 0.6, 11, red},
                                                {180, 230, 50, 60, 8, 0.2, 11, blue},
                                                {340, 150, 90, 40, 5, 0.8, 11, blue},
                                                {500, 230, 60, 70, 6, 0.5, 11, blue},
                                                {320, 180, 200, 90, 4, 0.1, 5, white}});

bool OnMarking(double x, double y) {
    const bool onEdge =
        std::abs(std::abs(x - width / 2.0) - 290) < 1.5 || std::abs(std::abs(y - height / 2.0) - 150) < 1.5;
    const bool inside = std::abs(x - width / 2.0) < 291.5 && std::abs(y - height / 2.0) < 151.5;
    const bool onCircle = std::abs(std::hypot(x - width / 2.0, y - height / 2.0) - 50) < 1.5;
    return inside && (onEdge || onCircle || std::abs(x - width / 2.0) < 1.5);
}

Colour GroundAt(int column, int row) {
    const Colour grass = column / 40 % 2 == 0 ? Colour{58, 132, 52} : Colour{74, 150, 62};
    return OnMarking(column + 0.5, row + 0.5) ? white : grass;
}

Colour WithRunners(Colour colour, int column, int row, double seconds) {
    for (const Runner& runner : runners) {
        const double angle = 2 * std::numbers::pi * (runner.start + seconds / runner.seconds);
        const double x = runner.x + runner.across * std::cos(angle);
        const double y = runner.y + runner.along * std::sin(angle);
        const double covered = runner.radius + 0.5 - std::hypot(column + 0.5 - x, row + 0.5 - y);
        if (covered > 0) colour = Mix(colour, runner.colour, covered < 1 ? covered : 1);
    }
    return colour;
}

// The squares of the number are 16 pixels wide and high.
Colour WithNumber(const Colour& colour, int column, int row, int frame) {
    constexpr int square = 16;
    constexpr int bits = 8;
    if (row >= square || column >= square * bits) return colour;
    return (frame >> (bits - 1 - column / square)) % 2 == 1 ? Colour{255, 255, 255} : Colour{};
}

picture_io::Picture Frame(int frame) {
    picture_io::Picture picture(width, height);
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column) {
            const Colour scene = WithRunners(GroundAt(column, row), column, row, frame / framesPerSecond);
            const Colour colour = WithNumber(scene, column, row, frame);
            const auto byte = [](double level) { return static_cast<std::uint8_t>(level + 0.5); };
            picture.Set(column, row, {byte(colour.red), byte(colour.green), byte(colour.blue), 255});
        }
    return picture;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs("usage: make_film OUT.mp4 ...\n", stderr);
        return 2;
    }
    try {
        std::vector<kel::VideoWriter> videos;
        for (int index = 1; index < argc; ++index)
            videos.emplace_back(argv[index], kel::VideoSettings{width, height, framesPerSecond, false});
        for (int frame = 0; frame < frames; ++frame) {
            const picture_io::Picture picture = Frame(frame);
            for (kel::VideoWriter& video : videos) video.Write(picture);
        }
        for (kel::VideoWriter& video : videos) video.Close();
        for (kel::VideoWriter& video : videos) video.Commit();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make_film: %s\n", error.what());
        return 2;
    }
    return 0;
}
