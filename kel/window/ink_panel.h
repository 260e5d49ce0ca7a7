#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "kel/workspace/fitted_keys.h"
#include "kel/workspace/workspace.h"

namespace kel {

// The part of the panel that is for what was drawn: undo and redo, choosing, fading, and the slots with small pictures
// of what they hold.
class InkPanel {
public:
    InkPanel() = default;
    ~InkPanel();
    InkPanel(const InkPanel&) = delete;
    InkPanel& operator=(const InkPanel&) = delete;
    InkPanel(InkPanel&&) = delete;
    InkPanel& operator=(InkPanel&&) = delete;

    void Show(Workspace& workspace, const FittedKeys& keys, bool isChoosing, std::vector<WorkspaceAction>& asked);

private:
    void ShowSlots(Workspace& workspace, const FittedKeys& keys, std::vector<WorkspaceAction>& asked);
    void RenewTextures(InkSlots& slots);

    std::array<std::uint32_t, InkSlots::count> m_textures{};  // OpenGL's; 0: none yet
    std::array<bool, InkSlots::count> m_isKept{};
    const InkSlots* m_slots = nullptr;  // whose textures they are
    std::size_t m_changes = 0;
};

}  // namespace kel
