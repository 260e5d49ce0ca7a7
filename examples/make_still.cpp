// Draws the picture that the filters are shown on, and writes it as a PNG:  make_still OUT.png
// Four times as large, `make_still OUT.png 4`, it is the photo of photo.json.
//
// A house by a lake in the evening, with a striped ball and a cat whom the flash gave red eyes: smooth slopes, hard
// edges, fine detail and a colour of every kind. 240 x 160 pixels; all numbers are in these, y downwards.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "examples/sampled_picture.h"

namespace {

using examples::Between;
using examples::Colour;
using examples::InDisc;
using examples::Mix;

constexpr int width = 240;
constexpr int height = 160;
constexpr double horizon = 92.0;
constexpr double shore = 116.0;
constexpr double sunX = 186.0;
constexpr double sunY = 46.0;

// 0 .. 1, another for each cell of a net.
double Speckle(int column, int row) {
    std::uint32_t hash =
        static_cast<std::uint32_t>(column) * 2654435761U ^ static_cast<std::uint32_t>(row) * 2246822519U;
    hash = (hash ^ (hash >> 15U)) * 2246822519U;
    hash ^= hash >> 13U;
    return (hash & 0xFFFFU) / 65535.0;
}

Colour Sky(double x, double y) {
    const Colour high{52, 92, 182};
    const Colour low{255, 210, 150};
    const Colour sky = Mix(high, low, std::clamp(y / horizon, 0.0, 1.0));
    if (InDisc(x, y, sunX, sunY, 13)) return {255, 246, 206};
    const double glow = std::exp(-(std::hypot(x - sunX, y - sunY) - 13) / 16);
    return Mix(sky, {255, 226, 150}, 0.8 * glow);
}

Colour Hills(const Colour& behind, double x, double y) {
    const double far = 80 - 9 * std::sin(x / 27.0) - 4 * std::sin(x / 11.0);
    const double near = 98 - 7 * std::sin(x / 38.0 + 2);
    if (y > near) return Mix({92, 150, 62}, {56, 112, 52}, std::clamp((y - near) / 20, 0.0, 1.0));
    if (y > far) return Mix({116, 122, 168}, {148, 156, 160}, std::clamp((y - far) / 24, 0.0, 1.0));
    return behind;
}

// The sky upside down, with a path of light below the sun.
Colour Lake(double x, double y) {
    const double depth = y - shore;
    const double ripple = std::sin(depth * 1.7 + 2.5 * std::sin(x / 17.0));
    const Colour water = Mix({214, 168, 140}, {30, 62, 122}, std::clamp(depth / 34, 0.0, 1.0));
    const bool glitters = std::abs(x - sunX) < 9 + depth / 3 && ripple > 0.2;
    return glitters ? Mix(water, {255, 240, 190}, 0.7) : Mix(water, {255, 255, 255}, 0.06 * (ripple + 1));
}

bool InRoof(double x, double y) { return Between(y, 44, 70) && std::abs(x - 62) <= (y - 44) * 1.6 + 2; }

Colour Window(double x, double y, double left, double top) {
    const bool onFrame = !Between(x, left + 1.5, left + 12.5) || !Between(y, top + 1.5, top + 12.5) ||
                         std::abs(x - left - 7) < 0.8 || std::abs(y - top - 7) < 0.8;
    return onFrame ? Colour{250, 250, 246} : Mix({255, 226, 120}, {226, 150, 50}, (y - top) / 14);
}

Colour Wall(double x, double y) {
    const auto course = static_cast<int>(std::floor(y / 4));
    const double along = x / 8 + (course % 2) * 0.5;
    const bool isJoint = y / 4 - course < 0.15 || along - std::floor(along) < 0.08;
    return isJoint ? Colour{206, 190, 168}
                   : Mix({232, 214, 184}, {216, 176, 142}, Speckle(static_cast<int>(along), course));
}

Colour House(const Colour& behind, double x, double y) {
    if (Between(x, 80, 88) && Between(y, 38, 58) && !InRoof(x, y))
        return Mix({150, 62, 48}, {110, 44, 38}, (x - 80) / 8);
    if (InRoof(x, y)) {
        const double tile = y / 3.25;
        return Mix({196, 58, 44}, {140, 34, 34}, 0.6 * (tile - std::floor(tile)));
    }
    if (!Between(x, 26, 98) || !Between(y, 70, 112)) return behind;
    for (const double left : {32.0, 78.0})
        if (Between(x, left, left + 14) && Between(y, 78, 92)) return Window(x, y, left, 78);
    if (Between(x, 54, 70) && Between(y, 80, 112)) {
        if (InDisc(x, y, 67, 97, 1.2)) return {240, 210, 90};
        return Mix({58, 104, 128}, {34, 66, 88}, std::abs(x - 62) / 8);
    }
    return Wall(x, y);
}

Colour Tree(const Colour& behind, double x, double y) {
    const bool inCrown = InDisc(x, y, 128, 66, 15) || InDisc(x, y, 116, 78, 12) || InDisc(x, y, 140, 78, 12);
    if (inCrown) {
        const Colour leaf = Mix({40, 104, 40}, {126, 176, 52}, std::clamp((x - y - 24) / 60, 0.0, 1.0));
        return Mix(leaf, {20, 62, 30}, 0.5 * Speckle(static_cast<int>(x / 2.5), static_cast<int>(y / 2.5)));
    }
    return Between(x, 125, 131) && Between(y, 80, 114) ? Mix({112, 76, 46}, {66, 42, 28}, (x - 125) / 6) : behind;
}

// Six gores around a pole that leans to the viewer, round by its light and its shade.
Colour Ball(const Colour& behind, double x, double y) {
    constexpr double centreX = 206, centreY = 128, radius = 21;
    if (!InDisc(x, y, centreX, centreY, radius)) return behind;
    constexpr auto gores = std::to_array<Colour>(
        {{226, 40, 44}, {246, 210, 40}, {44, 168, 70}, {40, 190, 214}, {44, 66, 196}, {206, 50, 170}});
    const double angle = std::atan2(y - centreY + 6, x - centreX + 4) + std::numbers::pi;
    const auto gore = static_cast<std::size_t>(angle / (2 * std::numbers::pi) * gores.size()) % gores.size();
    const double light = 1 - std::hypot(x - centreX + 8, y - centreY + 8) / (1.5 * radius);
    return light > 0.5 ? Mix(gores[gore], {255, 255, 255}, light - 0.5) : Mix({20, 16, 30}, gores[gore], 0.5 + light);
}

// One ear or one side of the face: the cat is the same on both.
Colour Cat(const Colour& behind, double x, double y) {
    constexpr double centreX = 142, centreY = 136;
    const double aside = std::abs(x - centreX);
    const bool inEar =
        Between(y, 108, 126) && Between(aside, 18 - (126 - y) * 0.25 - (y - 108) * 0.8, 20 - (126 - y) * 0.25);
    const bool inHead = std::hypot(aside / 1.1, y - centreY) <= 19;
    if (!inHead && !inEar) return behind;
    if (!inHead) return Mix({104, 96, 96}, {216, 150, 150}, Between(aside, 10, 14) && y > 114 ? 0.8 : 0.0);
    if (InDisc(aside, y, 8.5, 132, 2.8))
        return InDisc(aside, y, 7.8, 131, 0.9) ? Colour{255, 220, 214} : Colour{236, 20, 20};
    if (InDisc(aside, y, 8.5, 132, 5.2)) return {186, 206, 92};
    if (std::abs(y - 141) < 2 && aside < 2.4 - (y - 139) * 0.5) return {224, 132, 140};
    if (Between(aside, 6, 18) && std::abs(y - 143 - (aside - 6) * 0.12) < 0.5) return {244, 244, 244};
    if (y > 139 && InDisc(aside, y, 4, 144, 5)) return {214, 206, 200};
    const bool striped = y < 128 && std::sin(aside * 1.1 + 1.6) > 0.5;
    return striped ? Colour{58, 52, 54} : Mix({126, 118, 116}, {92, 84, 86}, aside / 20);
}

Colour StillAt(double x, double y) {
    Colour colour = y > shore ? Lake(x, y) : Hills(Sky(x, y), x, y);
    if (Between(y, 110, shore + 2 * std::sin(x / 6.0))) colour = Mix({196, 178, 128}, {156, 134, 92}, (y - 110) / 8);
    colour = Tree(House(colour, x, y), x, y);
    return Cat(Ball(colour, x, y), x, y);
}

}  // namespace

int main(int argc, char** argv) {
    return examples::WriteSampledPicture(argc, argv, "make_still", width, height, StillAt);
}
