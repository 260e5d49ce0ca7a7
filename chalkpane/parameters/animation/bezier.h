#pragma once

namespace chalkpane {

// The parameter u, 0 .. 1, at which the cubic Bezier with the controls x0, x1, x2, x3 reaches `x`; the controls rise
// from x0 to x3. Always ends and answers within 0 .. 1, whatever the numbers.
double solveBezierParameter(double x0, double x1, double x2, double x3, double x);

// The cubic Bezier of four values at u.
inline double bezierAt(double u, double y0, double y1, double y2, double y3) {
    const double w = 1.0 - u;
    return w * w * w * y0 + 3.0 * w * w * u * y1 + 3.0 * w * u * u * y2 + u * u * u * y3;
}

}  // namespace chalkpane
