// Draws the pitch of the example sessions, seen from right above, and writes it as a PNG:  make_pitch OUT.png
//
// A football pitch in metres, x along the touchline from the centre spot towards the goal, y across it, with the stands
// behind it. The picture is square and shows 120 m each way, so a container of 1200 by 1200 has ten units a metre.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "examples/sampled_picture.h"

namespace {

using examples::Between;
using examples::Colour;
using examples::InDisc;
using examples::Mix;

constexpr int sidePixels = 1440;
constexpr double sideMetres = 120.0;
constexpr double pixelsPerMetre = sidePixels / sideMetres;  // 12
constexpr double left = -30.0;                              // metres, of the picture's left edge
constexpr double top = 60.0;                                // metres, of the picture's top edge

constexpr double goalLine = 52.5;
constexpr double touchLine = 34.0;
constexpr double halfLine = 0.09;  // half the width of a marking: a little more than the laws allow, for the camera

// On the outline of the rectangle from (x0, y0) to (x1, y1).
bool OnBox(double x, double y, double x0, double y0, double x1, double y1) {
    const bool inOuter = Between(x, x0 - halfLine, x1 + halfLine) && Between(y, y0 - halfLine, y1 + halfLine);
    const bool inInner = Between(x, x0 + halfLine, x1 - halfLine) && Between(y, y0 + halfLine, y1 - halfLine);
    return inOuter && !inInner;
}

bool OnCircle(double x, double y, double centreX, double centreY, double radius) {
    return std::abs(std::hypot(x - centreX, y - centreY) - radius) <= halfLine;
}

bool OnMarking(double x, double y) {
    constexpr double circle = 9.15;
    constexpr double spot = goalLine - 11.0;
    constexpr double penaltyArea = goalLine - 16.5;
    const double fromAxis = std::abs(y);
    const bool onPitch = x <= goalLine + halfLine && fromAxis <= touchLine + halfLine;
    if (!onPitch) return false;
    return OnBox(x, y, -goalLine, -touchLine, goalLine, touchLine) || std::abs(x) <= halfLine ||
           OnCircle(x, y, 0, 0, circle) || InDisc(x, y, 0, 0, 0.25) ||
           OnBox(x, fromAxis, penaltyArea, -20.16, goalLine, 20.16) ||
           OnBox(x, fromAxis, goalLine - 5.5, -9.16, goalLine, 9.16) || InDisc(x, y, spot, 0, 0.25) ||
           (x < penaltyArea && OnCircle(x, y, spot, 0, circle)) || OnCircle(x, fromAxis, goalLine, touchLine, 1.0);
}

// Mown in stripes both ways; a little darker outside the lines.
Colour Grass(double x, double y) {
    constexpr double stripe = 5.5;
    const auto parity = [](double along) { return static_cast<int>(std::floor(along)) & 1; };
    Colour grass = parity((x + goalLine) / stripe) ? Colour{58, 132, 52} : Colour{74, 150, 62};
    if (parity((y + touchLine) / (2 * touchLine / 8))) grass = Mix(grass, {46, 116, 46}, 0.28);
    const bool inside = std::abs(y) <= touchLine && x <= goalLine;
    return inside ? grass : Mix(grass, {34, 92, 44}, 0.55);
}

Colour Net(const Colour& behind, double x, double y) {
    constexpr double mesh = 0.4;
    const auto nearThread = [](double along) { return std::abs(along - std::round(along / mesh) * mesh) < 0.07; };
    return Mix(behind, {245, 245, 245}, nearThread(x) || nearThread(y) ? 0.75 : 0.18);
}

// A strip of boards behind the far touchline and behind the goal.
constexpr double boardsFar = 37.0;   // where they begin, metres across the pitch
constexpr double boardsGoal = 57.0;  // where they begin, metres along it
constexpr double boardsThickness = 1.0;

bool OnBoards(double x, double y) {
    const bool behindTouchLine =
        Between(y, boardsFar, boardsFar + boardsThickness) && x <= boardsGoal + boardsThickness;
    const bool behindGoal = Between(x, boardsGoal, boardsGoal + boardsThickness) && y <= boardsFar + boardsThickness;
    return behindTouchLine || behindGoal;
}

Colour Boards(double x, double y) {
    constexpr auto colours =
        std::to_array<Colour>({{24, 54, 120}, {236, 236, 232}, {176, 28, 40}, {236, 236, 232}, {20, 96, 92}});
    const double along = y > boardsFar ? x + 100.0 : 100.0 + boardsGoal - y;
    return colours[static_cast<std::size_t>(along / 7.0) % colours.size()];
}

// Rows of seats, nearly all of them taken, each with its own shirt.
Colour Stands(double fromBoards, double along) {
    constexpr double row = 1.1;
    constexpr double seat = 0.9;
    constexpr auto shirts = std::to_array<Colour>({{196, 44, 48},
                                                   {44, 78, 176},
                                                   {214, 214, 210},
                                                   {222, 190, 120},
                                                   {60, 66, 78},
                                                   {150, 40, 60},
                                                   {98, 120, 150},
                                                   {84, 88, 98}});
    const auto rowNumber = static_cast<std::uint32_t>(fromBoards / row);
    const auto seatNumber = static_cast<std::uint32_t>((along + 200.0) / seat);
    std::uint32_t hash = rowNumber * 2654435761U ^ seatNumber * 2246822519U;
    hash = (hash ^ (hash >> 15U)) * 2246822519U;
    hash ^= hash >> 13U;
    const double step = fromBoards / row - rowNumber;
    const Colour tier = step < 0.15 ? Colour{96, 100, 108} : Colour{58, 62, 70};
    const double fromSeat = std::hypot((step - 0.6) * row, ((along + 200.0) / seat - seatNumber - 0.5) * seat);
    return fromSeat < 0.33 ? Mix(shirts[hash % shirts.size()], tier, 0.25) : tier;
}

enum class Team { Red, Blue, Keeper };
struct Player {
    double x, y;
    Team team;
};
constexpr auto players = std::to_array<Player>({
    {2.0, -1.5, Team::Red},
    {14.0, 16.5, Team::Red},
    {17.5, -17.0, Team::Red},
    {25.0, 2.0, Team::Red},
    {33.5, -12.0, Team::Red},
    {36.5, 9.5, Team::Red},
    {9.0, 4.0, Team::Blue},
    {21.5, -8.5, Team::Blue},
    {30.0, 15.5, Team::Blue},
    {38.5, -5.0, Team::Blue},
    {40.0, 5.0, Team::Blue},
    {42.0, -14.0, Team::Blue},
    {50.5, 0.5, Team::Keeper},
});
constexpr double playerRadius = 0.95;
constexpr double ballX = 26.6;
constexpr double ballY = 1.2;

Colour Shirt(Team team) {
    switch (team) {
        case Team::Red:
            return {208, 36, 40};
        case Team::Blue:
            return {32, 74, 190};
        case Team::Keeper:
            return {240, 200, 30};
    }
    return {};
}

Colour WithPlayers(Colour colour, double x, double y) {
    for (const Player& player : players)
        if (InDisc(x, y, player.x + 0.5, player.y - 0.35, playerRadius)) colour = Mix(colour, {10, 30, 10}, 0.45);
    for (const Player& player : players) {
        if (!InDisc(x, y, player.x, player.y, playerRadius)) continue;
        const double fromCentre = std::hypot(x - player.x, y - player.y) / playerRadius;
        const double lit = std::hypot(x - player.x + 0.35, y - player.y - 0.35) / playerRadius;
        colour = fromCentre > 0.78 ? Colour{250, 250, 250}
                                   : Mix(Mix(Shirt(player.team), {255, 255, 255}, 0.25), Shirt(player.team), lit);
    }
    if (InDisc(x, y, ballX + 0.2, ballY - 0.2, 0.5)) colour = Mix(colour, {10, 30, 10}, 0.45);
    if (InDisc(x, y, ballX, ballY, 0.5)) colour = {255, 255, 255};
    return colour;
}

Colour PitchAt(double x, double y) {
    if (OnBoards(x, y)) return Boards(x, y);
    const double beyondFar = y - boardsFar - boardsThickness;
    const double beyondGoal = x - boardsGoal - boardsThickness;
    constexpr double walkway = 1.6;
    if (std::max(beyondFar, beyondGoal) > 0 && std::max(beyondFar, beyondGoal) <= walkway) return {88, 94, 100};
    if (beyondFar > walkway && beyondFar >= beyondGoal) return Stands(beyondFar - walkway, x);
    if (beyondGoal > walkway) return Stands(beyondGoal - walkway, y);
    Colour colour = Grass(x, y);
    if (Between(x, goalLine, goalLine + 2.2) && std::abs(y) <= 3.66) colour = Net(colour, x, y);
    if (OnMarking(x, y)) colour = Mix(colour, {250, 252, 248}, 0.92);
    return WithPlayers(colour, x, y);
}

Colour PlaceAt(double column, double row) {
    return PitchAt(left + column / pixelsPerMetre, top - row / pixelsPerMetre);
}

}  // namespace

int main(int argc, char** argv) {
    return examples::WriteSampledPicture(argc, argv, "make_pitch", sidePixels, sidePixels, PlaceAt);
}
