#include "kel/window/ink_panel.h"

#include <imgui.h>

#include <string>

#include "kel/scene/gl.h"

namespace kel {
namespace {

void Tip(const std::string& text, const std::string& chord) {
    if (!ImGui::IsItemHovered()) return;
    ImGui::SetTooltip(chord.empty() ? "%s" : "%s\nKey: %s", text.c_str(), chord.c_str());
}

void ShowButton(const char* label, float width, WorkspaceAction action, const char* tip, const FittedKeys& keys,
                std::vector<WorkspaceAction>& asked) {
    if (ImGui::Button(label, {width, 0})) asked.push_back(action);
    Tip(tip, keys.ChordOf(action));
}

void ShowFading(Workspace& workspace, const FittedKeys& keys) {
    Workspace::Fading fading = workspace.InkFading();
    bool isOther = ImGui::Checkbox("Ink fades after", &fading.isOn);
    Tip("All ink leaves together when drawing has stopped; undo brings it back", keys.ChordOf(WorkspaceAction::Fade));
    ImGui::SameLine();
    ImGui::SetNextItemWidth(-1);
    constexpr double shortest = 0.5;
    constexpr double longest = 30;
    isOther |= ImGui::SliderScalar("##after", ImGuiDataType_Double, &fading.after, &shortest, &longest, "%.1f seconds");
    ImGui::AlignTextToFramePadding();
    ImGui::TextDisabled("and takes");
    ImGui::SameLine();
    ImGui::SetNextItemWidth(-1);
    constexpr double least = 0;
    constexpr double most = 10;
    isOther |= ImGui::SliderScalar("##over", ImGuiDataType_Double, &fading.over, &least, &most, "%.1f seconds");
    if (isOther) workspace.SetFading(fading);
}

}  // namespace

InkPanel::~InkPanel() { glDeleteTextures(static_cast<GLsizei>(m_textures.size()), m_textures.data()); }

void InkPanel::RenewTextures(InkSlots& slots) {
    for (int slot = 1; slot <= InkSlots::count; ++slot) (void)slots.Thumbnail(slot);
    if (m_slots == &slots && m_changes == slots.Changes()) return;
    m_slots = &slots;
    m_changes = slots.Changes();
    if (m_textures[0] == 0) glGenTextures(static_cast<GLsizei>(m_textures.size()), m_textures.data());
    for (int slot = 1; slot <= InkSlots::count; ++slot) {
        const auto index = static_cast<std::size_t>(slot - 1);
        const picture_io::Picture* const thumbnail = slots.Thumbnail(slot);
        m_isKept[index] = thumbnail != nullptr;
        if (thumbnail == nullptr) continue;
        const picture_io::Picture straight = picture_io::DividedByAlpha(*thumbnail);
        glBindTexture(GL_TEXTURE_2D, m_textures[index]);
        glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, straight.width, straight.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     straight.rgba.data());
        glBindTexture(GL_TEXTURE_2D, 0);
    }
}

void InkPanel::ShowSlots(Workspace& workspace, const FittedKeys& keys, std::vector<WorkspaceAction>& asked) {
    RenewTextures(workspace.Slots());
    const float gap = 2;
    const float side = (ImGui::GetContentRegionAvail().x - gap * (InkSlots::count - 1)) / InkSlots::count;
    for (int slot = 1; slot <= InkSlots::count; ++slot) {
        const auto index = static_cast<std::size_t>(slot - 1);
        if (slot > 1) ImGui::SameLine(0, gap);
        ImGui::PushID(slot);
        const ImVec2 corner = ImGui::GetCursorScreenPos();
        const bool isShifted = ImGui::GetIO().KeyShift;
        if (ImGui::Button(m_isKept[index] ? "##slot" : std::to_string(slot).c_str(), {side, side})) {
            if (!m_isKept[index])
                asked.push_back(OfSlot(WorkspaceAction::Keep, slot));
            else
                asked.push_back(OfSlot(isShifted ? WorkspaceAction::RecallInPlace : WorkspaceAction::Recall, slot));
        }
        if (m_isKept[index]) {
            const auto texture = static_cast<std::uintptr_t>(m_textures[index]);
            ImGui::GetWindowDrawList()->AddImage(reinterpret_cast<ImTextureID>(texture), corner,
                                                 {corner.x + side, corner.y + side});
            Tip("Recalls this drawing over what is there; with Shift, in its place",
                keys.ChordOf(OfSlot(WorkspaceAction::Recall, slot)));
        } else {
            Tip("Keeps the drawing here", keys.ChordOf(OfSlot(WorkspaceAction::Keep, slot)));
        }
        ImGui::PopID();
    }
}

void InkPanel::Show(Workspace& workspace, const FittedKeys& keys, bool isChoosing,
                    std::vector<WorkspaceAction>& asked) {
    if (workspace.Ink() == nullptr) return;
    ImGui::Spacing();
    if (!ImGui::CollapsingHeader("Ink", ImGuiTreeNodeFlags_DefaultOpen)) return;
    const float gaps = 2 * ImGui::GetStyle().ItemSpacing.x;
    const float width = (ImGui::GetContentRegionAvail().x - gaps) / 3;
    ShowButton("Undo stroke", width, WorkspaceAction::Undo, "Takes back, to the beginning", keys, asked);
    ImGui::SameLine();
    ShowButton("Redo", width, WorkspaceAction::Redo, "Brings back what was undone", keys, asked);
    ImGui::SameLine();
    if (!workspace.Ink()->CanKeep()) return ImGui::NewLine();
    if (isChoosing) ImGui::PushStyleColor(ImGuiCol_Text, ImGui::GetStyleColorVec4(ImGuiCol_CheckMark));
    ShowButton("Choose", width, WorkspaceAction::Choose,
               "Point at a stroke: drag moves it, Delete removes it, a color recolors it", keys, asked);
    if (isChoosing) ImGui::PopStyleColor();
    ShowFading(workspace, keys);
    ShowSlots(workspace, keys, asked);
}

}  // namespace kel
