#include "kel/ink/pane_mapping.h"

#include <GL/glu.h>

#include <algorithm>
#include <array>

#include "kel/scene/matrix.h"
#include "kel/scene/picking.h"
#include "telestrator/telestrator.h"

namespace kel {
namespace {

using chalkpane::Matrix4;
using chalkpane::Vector3;

// Modules get matrices as floats.
Matrix4 Narrowed(const Matrix& matrix) {
    Matrix4 narrowed;
    std::ranges::transform(matrix, narrowed.elements.begin(),
                           [](double element) { return static_cast<float>(element); });
    return narrowed;
}

// A point of the window, depth 0 .. 1, in the world; where that cannot be told, the point as it is.
Vector3 Unprojected(const Vector3& point, const Matrix4& camera, WindowSize window) {
    const auto model = Matrix4().Widen();
    const auto projection = camera.Widen();
    const std::array<GLint, 4> viewport{0, 0, window.width, window.height};
    std::array<double, 3> found{};
    const GLint answer = gluUnProject(point.x, point.y, point.z, model.data(), projection.data(), viewport.data(),
                                      &found[0], &found[1], &found[2]);
    return answer == GLU_TRUE ? Vector3(found[0], found[1], found[2]) : point;
}

}  // namespace

const Placement& PaneMapping::ThePlacement() const {
    return m_state->objects.Find<ContainerObject>(m_container)->placement;
}

chalkpane::PlaneBox PaneMapping::Box() const {
    const auto halfWidth = static_cast<float>(ThePlacement().size[0] / 2);
    const auto halfHeight = static_cast<float>(ThePlacement().size[1] / 2);
    return {-halfWidth, halfWidth, -halfHeight, halfHeight};
}

chalkpane::CanvasPosition PaneMapping::Map(WindowSize window, std::int32_t x, std::int32_t y) const {
    const Matrix4 camera = Narrowed(CurrentCameraMatrix(*m_state));
    const double fromBottom = static_cast<double>(window.height) - y;
    const Vector3 nearPoint = Unprojected({static_cast<double>(x), fromBottom, 0}, camera, window);
    const Vector3 farPoint = Unprojected({static_cast<double>(x), fromBottom, 1}, camera, window);
    const Vector3 point = MeetPlane(nearPoint, farPoint, Narrowed(WorldMatrix(ThePlacement())));
    return OnCanvas(point, Box(), chalkpane::canvasSize, chalkpane::canvasSize);
}

std::optional<std::array<double, 2>> PaneMapping::Project(const chalkpane::CanvasPosition& at) const {
    const chalkpane::PlaneBox box = Box();
    constexpr double last = chalkpane::canvasSize - 1;
    const std::array<double, 4> point{box.minX + at.x / last * box.Width(),
                                      box.minY + (last - at.y) / last * box.Height(), 0, 1};
    const Matrix matrix = CurrentCameraMatrix(*m_state) * WorldMatrix(ThePlacement());
    std::array<double, 4> seen{};
    for (std::size_t row = 0; row < seen.size(); ++row)
        for (std::size_t column = 0; column < point.size(); ++column)
            seen[row] += matrix[column * 4 + row] * point[column];
    if (!(seen[3] > 0)) return std::nullopt;
    return std::array<double, 2>{(seen[0] / seen[3] + 1) / 2 * m_state->window.width,
                                 (1 - seen[1] / seen[3]) / 2 * m_state->window.height};
}

bool PaneMapping::IsOver(std::int32_t x, std::int32_t y) const { return ContainerUnder(*m_state, x, y) == m_container; }

}  // namespace kel
