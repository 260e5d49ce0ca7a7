#include "chalkpane/parameters/animation/bezier.h"

#include <cmath>

namespace chalkpane {

namespace {

// Halves the controls about their middle until the middle point lies on x.
double bisect(double x0, double x1, double x2, double x3, double x) {
    double low = 0.0;
    double high = 1.0;
    for (int round = 0; round < 100; ++round) {
        const double x01 = (x0 + x1) / 2;
        const double x12 = (x1 + x2) / 2;
        const double x23 = (x2 + x3) / 2;
        const double x012 = (x01 + x12) / 2;
        const double x123 = (x12 + x23) / 2;
        const double middle = (x012 + x123) / 2;
        if (std::fabs(middle - x) < 1e-8) break;
        if (x < middle) {
            x1 = x01;
            x2 = x012;
            x3 = middle;
            high = (low + high) / 2;
        } else {
            x0 = middle;
            x1 = x123;
            x2 = x23;
            low = (low + high) / 2;
        }
    }
    return (low + high) / 2;
}

}  // namespace

double solveBezierParameter(double x0, double x1, double x2, double x3, double x) {
    const double uBisect = bisect(x0, x1, x2, x3, x);
    const double c = 3 * (x1 - x0);
    const double b = 3 * (x0 - 2 * x1 + x2);
    const double a = 3 * (x1 - x2) + (x3 - x0);
    const auto errorAt = [=](double u) { return x - (x0 + ((a * u + b) * u + c) * u); };

    double u = uBisect;
    double firstError = 0.0;
    for (int round = 0; round < 3; ++round) {
        const double error = errorAt(u);
        if (round == 0) firstError = error;
        const double derivative = (3 * a * u + 2 * b) * u + c;
        if (std::fabs(derivative) < 1e-20) break;
        u += error / derivative;
    }
    // Newton must have done better than the bisection, strictly; a NaN has not.
    const bool better = std::fabs(firstError) > std::fabs(errorAt(u));
    return better && u >= 0.0 && u <= 1.0 ? u : uBisect;
}

}  // namespace chalkpane
