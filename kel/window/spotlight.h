#pragma once

#include <cstdint>
#include <optional>

#include "kel/workspace/picture_area.h"

namespace kel {

// Dims the window but for an ellipse around the last stroke. Nothing but the display knows of it.
class Spotlight {
public:
    // The path of the stroke that is being drawn.
    void Press(const ScenePixel& at);
    void Move(const ScenePixel& at);
    void Release();

    void Toggle() { m_isOn = !m_isOn; }
    void TurnOff() { m_isOn = false; }
    [[nodiscard]] bool IsOn() const { return m_isOn; }
    // False: nothing has been drawn yet, so there is nothing to light.
    [[nodiscard]] bool HasRing() const { return m_ring.has_value(); }
    // Nothing is known of what was drawn before.
    void Forget() { *this = {}; }

    // Adds it to the panel's page behind all others.
    void Show(const PictureArea& picture, WindowSize scene) const;

private:
    struct Bounds {
        std::int32_t left = 0;  // scene pixels
        std::int32_t top = 0;
        std::int32_t right = 0;
        std::int32_t bottom = 0;
    };
    std::optional<Bounds> m_drawing;
    std::optional<Bounds> m_ring;  // of the last whole stroke
    bool m_isOn = false;
};

}  // namespace kel
