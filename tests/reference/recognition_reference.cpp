#include "tests/reference/recognition_reference.h"

#include <cmath>
#include <cstddef>

namespace chalkpane::reference {
namespace {

constexpr double pi = 3.141592653589793;
constexpr int canvas = 1024;

double Distance(const Vector3& a, const Vector3& b) {
    const float x = a.x - b.x;
    const float y = a.y - b.y;
    const float z = a.z - b.z;
    return std::sqrt(double{x} * x + double{y} * y + double{z} * z);
}

Vector3 EllipsePoint(const Ellipse& best, Vector3 c, double aspect, double x, int sign) {
    double t = x * x / (best.a * best.a);
    if (t > 1) t = 1;
    const auto localX = static_cast<float>(x + best.centreX);
    const auto localY = static_cast<float>(sign * std::sqrt(best.b * best.b - t * (best.b * best.b)) + best.centreY);
    const double r = std::sqrt(double{localX} * localX + double{localY} * localY);
    const double phi = std::atan2(double{localY}, double{localX}) - best.angle;
    return {r * std::cos(phi) + c.x, (r * std::sin(phi) + c.y) * aspect, 0};
}

}  // namespace

Ellipse FitEllipse(std::span<const Vector3> points, Vector3 centroid, double tolerance) {
    Ellipse best;
    for (int rotation = 0; rotation < 360; ++rotation) {
        const double theta = rotation * pi / 360 - pi / 2;
        std::vector<Vector3> rotated;
        float minX = canvas;
        float minY = canvas;
        float maxX = -canvas;
        float maxY = -canvas;
        for (const Vector3& p : points) {
            const Vector3 d = p - centroid;
            const double r = std::sqrt(double{d.x} * d.x + double{d.y} * d.y);
            const double phi = std::atan2(double{d.y}, double{d.x}) + theta;
            rotated.emplace_back(r * std::cos(phi), r * std::sin(phi), 0.0);
            minX = std::fmin(minX, rotated.back().x);
            minY = std::fmin(minY, rotated.back().y);
            maxX = std::fmax(maxX, rotated.back().x);
            maxY = std::fmax(maxY, rotated.back().y);
        }
        const Vector3 middle((double{minX} + maxX) / 2, (double{minY} + maxY) / 2, 0);
        const double a = std::fabs(double{maxX} - minX) / 2;
        const double b = std::fabs(double{maxY} - minY) / 2;
        int count = 0;
        for (const Vector3& p : rotated) {
            const double x = double{p.x} - middle.x;
            const double y = double{p.y} - middle.y;
            const double e = std::sqrt(y * y / (1 - x * x / (a * a)));
            if (std::fabs(b - e) < tolerance) ++count;
            if (count > best.count) best = {count, theta, a, b, middle.x, middle.y};
        }
    }
    return best;
}

std::vector<Vector3> EllipseVertices(const Ellipse& ellipse, Vector3 centroid, double aspect, int brushWidth) {
    const double a = ellipse.a;
    const Vector3 ends = EllipsePoint(ellipse, centroid, aspect, a, 1);
    std::vector<Vector3> vertices{ends};
    const auto step = [&](double x, int sign, int threshold) {
        const Vector3 p = EllipsePoint(ellipse, centroid, aspect, x, sign);
        if (Distance(p, vertices.back()) > threshold) vertices.push_back(p);
    };
    const auto stepDown = [&](double x, double limit) {
        while (x > limit) {
            step(x, 1, brushWidth / 2);
            x -= 0.01;
        }
    };
    const auto stepUp = [&](double x, double limit) {
        while (x < limit) {
            step(x, -1, brushWidth);
            x += 0.01;
        }
    };
    stepDown(a, -0.005);
    stepDown(0, -a - 0.005);
    stepUp(-a, 0.005);
    stepUp(0, a + 0.005);
    vertices.push_back(ends);
    return vertices;
}

Circle VoteForCircles(std::span<const Vector3> points) {
    const int count = static_cast<int>(points.size());
    double diameter = 0;
    for (int i = 0; i <= count - 2; ++i) {
        for (int j = 1; j <= count - 1; ++j) {
            diameter =
                std::fmax(diameter, Distance(points[static_cast<std::size_t>(i)], points[static_cast<std::size_t>(j)]));
        }
    }
    double radius = diameter * 0.5 + 0.1;
    const int quarter = canvas / 4;
    if (quarter < radius) radius = canvas * 0.25;
    std::vector<std::uint32_t> accumulator(256 * 256 * 256);
    Circle best;
    for (const Vector3& p : points) {
        const int firstI = std::max(static_cast<int>((p.x - radius) * 256 / canvas), 0);
        const int endI = std::min(static_cast<int>((p.x + radius) * 256 / canvas), 256);
        const int firstJ = std::max(static_cast<int>((p.y - radius) * 256 / canvas), 0);
        const int endJ = std::min(static_cast<int>((p.y + radius) * 256 / canvas), 256);
        for (int i = firstI; i < endI; ++i) {
            for (int j = firstJ; j < endJ; ++j) {
                const Vector3 q(canvas * i / 256.0, canvas * j / 256.0, 0);
                const double dist = Distance(q, p);
                const int k = static_cast<int>(dist + 0.5) * 256 / canvas;
                if (k >= 256 || !(dist < radius)) continue;
                const int cell = ((i * 256) + j) * 256 + k;
                auto& counter = accumulator[static_cast<std::size_t>(cell)];
                ++counter;
                if (counter > best.count) best = {counter, q.x, q.y, dist};
            }
        }
    }
    return best;
}

}  // namespace chalkpane::reference
