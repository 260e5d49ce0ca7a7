#include "telestrator/recognition/ellipse_rotation.h"

namespace chalkpane {

Box RotatePointsPlain(const SeenPoints& points, double angle, const RotatedPoints& rotated, Box box) {
    for (std::size_t i = 0; i < rotated.xs.size(); ++i) {
        RotateOne(points, angle, rotated, i);
        box.x.Extend(rotated.xs[i]);
        box.y.Extend(rotated.ys[i]);
    }
    return box;
}

std::int32_t CountPointsOnEllipsePlain(const RotatedPoints& rotated, const EllipseFit& fit, double tolerance) {
    std::int32_t count = 0;
    for (std::size_t i = 0; i < rotated.xs.size(); ++i)
        count += LiesOn(fit, rotated.xs[i], rotated.ys[i], tolerance) ? 1 : 0;
    return count;
}

}  // namespace chalkpane
