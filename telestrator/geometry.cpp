#include "telestrator/geometry.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace chalkpane {

Vector3& Vector3::operator+=(const Vector3& other) { return *this = *this + other; }

Vector3& Vector3::operator/=(float divisor) {
    const double factor = 1.0 / double{divisor};
    return *this = Vector3(x * factor, y * factor, z * factor);
}

Vector3& Vector3::operator*=(float factor) { return *this = *this * factor; }

double Vector3::Normalise() {
    const double length = Length();
    if (const auto divisor = static_cast<float>(length); divisor != 0.0F) *this /= divisor;
    return length;
}

bool IsFinite(const Vector3& vector) {
    return std::isfinite(vector.x) && std::isfinite(vector.y) && std::isfinite(vector.z);
}

bool SegmentsIntersect(const Vector3& a, const Vector3& b, const Vector3& c, const Vector3& e, Vector3& crossing) {
    const Vector3 u = b - a;
    const Vector3 v = e - c;
    const double denominator = double{u.x} * v.y - double{v.x} * u.y;
    if (denominator == 0) return false;
    const double fromX = double{a.x} - c.x;
    const double fromY = double{a.y} - c.y;
    const double s = (fromY * v.x - fromX * v.y) / denominator;
    const double t = (fromY * u.x - fromX * u.y) / denominator;
    crossing = a + u * static_cast<float>(s);
    return s >= 0 && s <= 1 && t >= 0 && t <= 1;
}

std::int32_t TruncateToInt(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(value)) return 0;
    return static_cast<std::int32_t>(std::clamp(value, double{Limits::min()}, double{Limits::max()}));
}

}  // namespace chalkpane
