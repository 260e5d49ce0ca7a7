#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

#include "telestrator/telestrator.h"

namespace chalkpane::testing {

using Points = std::vector<Vector3>;

// An ellipse drawn once round from `startDegrees`, ends meeting, rotated by `tilt` radians.
inline Points EllipsePoints(double centreX, double centreY, double a, double b, double tilt, int count,
                            double startDegrees = 45) {
    constexpr double turn = 2 * 3.141592653589793;
    Points points;
    for (int i = 0; i < count; ++i) {
        const double t = startDegrees / 360 * turn + turn * i / (count - 1);
        const double x = a * std::cos(t);
        const double y = b * std::sin(t);
        points.emplace_back(centreX + x * std::cos(tilt) - y * std::sin(tilt),
                            centreY + x * std::sin(tilt) + y * std::cos(tilt), 0.0);
    }
    return points;
}

inline Points LinePoints(double fromX, double fromY, double toX, double toY, int count) {
    Points points;
    for (int i = 0; i < count; ++i) {
        const double t = static_cast<double>(i) / (count - 1);
        points.emplace_back(fromX + (toX - fromX) * t, fromY + (toY - fromY) * t, 0.0);
    }
    return points;
}

// Two diagonals, one after the other.
inline Points CrossPoints(double x, double y, double half, int count) {
    Points points = LinePoints(x - half, y - half, x + half, y + half, count / 2);
    const Points second = LinePoints(x - half, y + half, x + half, y - half, count - count / 2);
    points.insert(points.end(), second.begin(), second.end());
    return points;
}

// A wavy line from left to right that no recogniser takes.
inline Points WavePoints(double x, double y, double length, int count) {
    Points points;
    for (int i = 0; i < count; ++i) {
        const double t = static_cast<double>(i) / (count - 1);
        points.emplace_back(x + length * t, y + 40 * std::sin(t * 20), 0.0);
    }
    return points;
}

// A spiral that surrounds its middle but lies on no ellipse and no circle, and never crosses itself.
inline Points SpiralPoints(double x, double y, double radius, int count) {
    Points points;
    for (int i = 0; i < count; ++i) {
        const double t = static_cast<double>(i) / (count - 1);
        const double r = radius * (0.05 + 0.95 * t);
        points.emplace_back(x + r * std::cos(t * 40), y + r * std::sin(t * 40), 0.0);
    }
    return points;
}

// Any points, some of them outside the canvas; `wholePixels` makes ties frequent.
inline Points RandomPoints(std::mt19937& random, int count, bool wholePixels) {
    std::uniform_real_distribution<double> coordinate(-100, 1124);
    Points points;
    for (int i = 0; i < count; ++i) {
        const double x = coordinate(random);
        const double y = coordinate(random);
        if (wholePixels) {
            points.emplace_back(std::floor(x / 64) * 64, std::floor(y / 64) * 64, 0.0);
        } else {
            points.emplace_back(x, y, 0.0);
        }
    }
    return points;
}

constexpr std::size_t fullBuffer = std::size_t{canvasSize} * canvasSize;

// Points a width apart on a scribble all over the canvas, until the buffer is full: what minutes of drawing leave.
inline Points ScribblePoints(double width, unsigned seed = 1) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> place(10, 1010);
    Points points;
    points.reserve(fullBuffer);
    double x = 500;
    double y = 500;
    while (points.size() < fullBuffer) {
        const double toX = place(random);
        const double toY = place(random);
        const int steps = std::max(static_cast<int>(std::hypot(toX - x, toY - y) / width), 1);
        for (int i = 1; i <= steps && points.size() < fullBuffer; ++i)
            points.emplace_back(x + (toX - x) * i / steps, y + (toY - y) * i / steps, 0.0);
        x = toX;
        y = toY;
    }
    return points;
}

// Nearly the same line to and fro, until the buffer is full, so that the same pixels are painted again and again.
inline Points ToAndFroPoints(double width) {
    Points points;
    points.reserve(fullBuffer);
    for (std::size_t i = 0; i < fullBuffer; ++i) {
        const auto number = static_cast<double>(i);
        const double way = std::fmod(number * width, 1960.0);
        points.emplace_back(20 + (way < 980 ? way : 1960 - way), 300 + 0.37 * std::fmod(number / 7.0, 30), 0.0);
    }
    return points;
}

// Puts a stroke into the buffer as if the pointer had drawn it.
inline void StoreStroke(Telestrator& telestrator, std::span<const Vector3> points) {
    telestrator.SizeRecognitionBuffers(true);
    std::copy(points.begin(), points.end(), telestrator.strokePoints.get());
    telestrator.strokePointCount = static_cast<std::int32_t>(points.size());
    if (!points.empty()) telestrator.lastStrokePoint = points.back();
}

}  // namespace chalkpane::testing
