#include "kel/window/live_opening.h"

#include <imgui.h>

#include <chrono>
#include <utility>

#include "cli/error.h"
#include "kel/window/panel_style.h"

namespace kel {

void LiveOpening::Begin(const std::string& name, const PacketRing::Limits& replay) {
    const LiveName parsed = ParseLiveName(name);
    m_live.reset();  // a port is free again before another is opened that may be the same
    m_live = std::make_shared<LiveSource>(parsed, replay);
}

void LiveOpening::Show(const PictureArea& area) const {
    if (!IsWaiting()) return;
    ImGui::SetNextWindowPos({static_cast<float>(area.x) + static_cast<float>(area.width) / 2,
                             static_cast<float>(area.y) + static_cast<float>(area.height) / 2},
                            ImGuiCond_Always, {0.5F, 0.5F});
    ImGui::PushStyleVar(ImGuiStyleVar_WindowRounding, 10 * PanelScale());
    ImGui::Begin("opening", nullptr,
                 ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoInputs | ImGuiWindowFlags_AlwaysAutoResize);
    ImGui::Text("Waiting for pictures from %s", m_live->Name().shown.c_str());
    ImGui::TextDisabled("Esc ends the waiting.");
    ImGui::End();
    ImGui::PopStyleVar();
}

std::shared_ptr<LiveSource> LiveOpening::Take() {
    if (!IsWaiting()) return nullptr;
    try {
        return m_live->WaitForPicture(std::chrono::milliseconds(0)) ? std::exchange(m_live, nullptr) : nullptr;
    } catch (const cli::Error&) {
        m_live.reset();
        throw;
    }
}

}  // namespace kel
