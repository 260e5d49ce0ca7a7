#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "telestrator/journal/journaled_telestrator.h"
#include "tests/telestrator/telestrator_fixture.h"

namespace chalkpane::testing {

// One stroke of a session: paths that join it one after the other, most often one.
struct SessionStroke {
    TelestratorSettings settings;
    std::vector<std::vector<CanvasPosition>> paths;
};
using DrawnSession = std::vector<SessionStroke>;

inline Telestrator& CanvasOwner(Telestrator& telestrator) { return telestrator; }
inline Telestrator& CanvasOwner(JournaledTelestrator& telestrator) { return telestrator.Inner(); }

template <typename AnyTelestrator>
Pixels CanvasOf(AnyTelestrator& telestrator) {
    return PixelsOf(*CanvasOwner(telestrator).canvasSurface);
}

template <typename AnyTelestrator>
void PassField(AnyTelestrator& telestrator, const TelestratorSettings& settings) {
    telestrator.Field(settings);
    telestrator.Commit();
}

// Draws the stroke field by field, and waits for what becomes of it. `afterField` is called after each field.
template <typename AnyTelestrator, typename AfterField>
void Draw(AnyTelestrator& telestrator, const SessionStroke& stroke, const AfterField& afterField) {
    const auto field = [&] {
        PassField(telestrator, stroke.settings);
        afterField();
    };
    field();
    telestrator.ApplyBrushMode(stroke.settings);
    for (const auto& path : stroke.paths) {
        telestrator.Press(stroke.settings, path.front());
        for (std::size_t i = 1; i + 1 < path.size(); ++i) {
            telestrator.Move(stroke.settings, path[i]);
            field();
        }
        telestrator.Release(stroke.settings, path.back());
        field();
    }
    for (int i = 0; stroke.settings.recogniseShapes && i < stroke.settings.shapeDelay + 2; ++i) field();
}

template <typename AnyTelestrator>
void Draw(AnyTelestrator& telestrator, const SessionStroke& stroke) {
    Draw(telestrator, stroke, [] {});
}

// What a plain telestrator shows after the session.
inline Pixels PlainCanvas(const DrawnSession& session) {
    Telestrator telestrator;
    telestrator.Field({});
    for (const SessionStroke& stroke : session) Draw(telestrator, stroke);
    return CanvasOf(telestrator);
}

// Draws sessions as the seed has them: freehand lines in all colours, lines with arrows, ellipses, circles, crosses,
// and the eraser, here and there beyond the canvas's edge.
class SessionMaker {
public:
    explicit SessionMaker(std::uint32_t seed) : random_(seed) {}

    int Number(int least, int most) { return std::uniform_int_distribution<int>(least, most)(random_); }
    double Real(double least, double most) { return std::uniform_real_distribution<double>(least, most)(random_); }

    SessionStroke Stroke() {
        SessionStroke stroke;
        TelestratorSettings& settings = stroke.settings;
        settings.maxUndos = 1;
        settings.brushWidth = Number(1, 4) == 1 ? Number(10, 30) : Number(2, 9);
        settings.eraserWidth = Number(5, 20);
        settings.brushColour = 0xFF000000U + static_cast<std::uint32_t>(Number(0, 0xFFFFFF));
        settings.brushType = Number(1, 5) == 1 ? BrushType::Eraser : BrushType::Colour;
        settings.recogniseShapes = Number(0, 1) == 1;
        settings.recogniseCircle = Number(0, 1) == 1;
        settings.recogniseEllipse = Number(0, 1) == 1;
        settings.arrow = Number(0, 1) == 1;
        settings.shapeDelay = Number(2, 4);  // a line's next path joins it within the delay
        switch (Number(0, 3)) {
            case 0:
                stroke.paths = {Round()};
                break;
            case 1:
                stroke.paths = Crossing();
                if (!settings.recogniseShapes) stroke.paths.pop_back();
                break;
            default:
                stroke.paths = {Wandering()};
                break;
        }
        return stroke;
    }

    DrawnSession Session(int strokes) {
        DrawnSession session;
        while (static_cast<int>(session.size()) < strokes) session.push_back(Stroke());
        return session;
    }

    CanvasPosition Place() { return {Real(-40, 1060), Real(-40, 1060)}; }

private:
    std::vector<CanvasPosition> Wandering() {
        std::vector<CanvasPosition> path = {Place()};
        const int count = Number(8, 25);
        const double stride = Real(5, 60);
        double direction = Real(0, 6.28);
        while (static_cast<int>(path.size()) < count) {
            direction += Real(-0.6, 0.6);
            path.push_back(
                {path.back().x + stride * std::cos(direction), path.back().y + stride * std::sin(direction)});
        }
        return path;
    }

    std::vector<CanvasPosition> Round() {
        const CanvasPosition centre{Real(100, 900), Real(100, 900)};
        const double width = Real(40, 160);
        const double height = Number(0, 1) == 1 ? width : Real(40, 160);
        std::vector<CanvasPosition> path;
        for (int i = 0; i < 32; ++i) {
            const double t = i * 0.2;
            path.push_back(
                {centre.x + width * std::cos(t) + Real(-1, 1), centre.y + height * std::sin(t) + Real(-1, 1)});
        }
        return path;
    }

    std::vector<std::vector<CanvasPosition>> Crossing() {
        const CanvasPosition centre{Real(100, 900), Real(100, 900)};
        const double half = Real(50, 120);
        const auto line = [&](double slope) {
            std::vector<CanvasPosition> path;
            for (int i = -8; i <= 8; ++i) {
                const double t = i * 0.125;
                path.push_back({centre.x + half * t, centre.y + half * slope * t});
            }
            return path;
        };
        return {line(Real(0.7, 1.2)), line(Real(-1.2, -0.7))};
    }

    std::mt19937 random_;
};

}  // namespace chalkpane::testing
