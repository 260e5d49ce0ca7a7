#pragma once

#include <cstddef>
#include <optional>

#include "kel/workspace/fitted_keys.h"
#include "kel/workspace/picture_area.h"
#include "kel/workspace/workspace.h"

namespace kel {

// While it is on, the pointer chooses strokes instead of drawing: the nearest ink under it, whose outline is shown.
// What is chosen is dragged to another place, deleted by Delete or Backspace, and recoloured by a key or a button that
// sets a colour.
class StrokeChooser {
public:
    [[nodiscard]] bool IsOn() const { return m_isOn; }
    void Toggle();
    [[nodiscard]] bool IsDragging() const { return m_isDragged; }

    // at: scene pixels
    void Point(Workspace& workspace, PointerKind kind, const ScenePixel& at);
    // True: the key was for the chosen stroke.
    bool TakeKey(Workspace& workspace, const FittedKeys::Key& key);
    [[nodiscard]] std::optional<std::size_t> Chosen() const { return m_chosen; }

    // Outlines over the picture, which stands there in the window.
    void Show(const Workspace& workspace, const PictureArea& area) const;

private:
    void ShowOutline(const Workspace& workspace, const PictureArea& area, std::size_t stroke, bool isChosen) const;

    bool m_isOn = false;
    std::optional<std::size_t> m_under;  // the pointer
    std::optional<std::size_t> m_chosen;
    bool m_isDragged = false;
    ScenePixel m_from;
    ScenePixel m_to;
};

}  // namespace kel
