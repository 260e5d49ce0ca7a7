#pragma once

namespace chalkpane::reference {

// The course between two keys in long doubles: halve u until x(u) stands at the frame, then weigh the four values. For
// handles that keep x rising.
inline long double KeySegment(long double t0, long double t1, long double frame, long double a, long double va,
                              long double sa, long double b, long double vb, long double sb) {
    const auto size = [](long double number) { return number < 0 ? -number : number; };
    const auto weigh = [](long double u, long double p, long double q, long double r, long double s) {
        const long double w = 1 - u;
        return w * w * w * p + 3 * w * w * u * q + 3 * w * u * u * r + u * u * u * s;
    };
    const long double span = t1 - t0;
    if (a == 0 && b == 0) return va + (vb - va) * (frame - t0) / span;
    long double low = 0;
    long double high = 1;
    for (int i = 0; i < 200; ++i) {
        const long double u = (low + high) / 2;
        (weigh(u, t0, t0 + size(a) * span, t1 - size(b) * span, t1) < frame ? low : high) = u;
    }
    const long double leftControl = a < 0 ? va - a * sa * span : va;
    const long double rightControl = b < 0 ? vb + b * sb * span : vb;
    return weigh((low + high) / 2, va, leftControl, rightControl, vb);
}

}  // namespace chalkpane::reference
