#include "telestrator/recognition/shape_recognition.h"

namespace chalkpane {

bool SurroundsOnAllSides(std::span<const Vector3> points, const Vector3& centre) {
    unsigned seen = 0;
    for (const Vector3& point : points) {
        const Vector3 d = point - centre;
        if (d.x > 0 && d.y > 0) seen |= 1U;
        if (d.x < 0 && d.y > 0) seen |= 2U;
        if (d.x < 0 && d.y < 0) seen |= 4U;
        if (d.x > 0 && d.y < 0) seen |= 8U;
    }
    return seen == 15U;
}

}  // namespace chalkpane
