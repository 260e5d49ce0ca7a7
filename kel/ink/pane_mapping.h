#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "kel/scene/host_state.h"
#include "telestrator/plane_geometry.h"

namespace kel {

// From window pixels to the canvas that is spread over a container, as the telestrator's module maps them.
//
// Borrows the host's state for its life.
class PaneMapping {
public:
    PaneMapping(HostState& state, ObjectId container) : m_state(&state), m_container(container) {}

    // False: the container is too narrow or too flat for anything to be mapped.
    [[nodiscard]] bool HasBox() const { return Box().IsMappable(); }
    [[nodiscard]] float Aspect() const { return static_cast<float>(Box().Width() / Box().Height()); }
    // Not clamped; not finite where there is no answer. The camera is that of the host's present window.
    //   window  that the pixel is in
    [[nodiscard]] chalkpane::CanvasPosition Map(WindowSize window, std::int32_t x, std::int32_t y) const;
    // The other way round; empty: behind the camera.
    [[nodiscard]] std::optional<std::array<double, 2>> Project(const chalkpane::CanvasPosition& at) const;
    // True: nothing else is in front of the container there.
    [[nodiscard]] bool IsOver(std::int32_t x, std::int32_t y) const;

private:
    [[nodiscard]] const Placement& ThePlacement() const;
    [[nodiscard]] chalkpane::PlaneBox Box() const;

    HostState* m_state;
    ObjectId m_container;
};

}  // namespace kel
