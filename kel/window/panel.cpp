#include "kel/window/panel.h"

#include <imgui.h>

#include <algorithm>

#include "kel/window/panel_style.h"
#include "kel/window/video_panel.h"

namespace kel {
namespace {

// For what the mouse rests on.
void Tip(const std::string& text, const std::string& chord = {}) {
    if ((text.empty() && chord.empty()) || !ImGui::IsItemHovered(ImGuiHoveredFlags_AllowWhenDisabled)) return;
    ImGui::BeginTooltip();
    ImGui::PushTextWrapPos(320 * PanelScale());
    if (!text.empty()) ImGui::TextUnformatted(text.c_str());
    if (!chord.empty()) ImGui::TextDisabled("Key: %s", chord.c_str());
    ImGui::PopTextWrapPos();
    ImGui::EndTooltip();
}

// The width of one of so many buttons side by side.
float ShareOfWidth(std::size_t count) {
    const float gaps = ImGui::GetStyle().ItemSpacing.x * static_cast<float>(count - 1);
    return (ImGui::GetContentRegionAvail().x - gaps) / static_cast<float>(count);
}

void ShowButtons(Workspace& workspace, const FittedKeys& keys) {
    const auto& buttons = workspace.Chosen()->registration->buttons;
    constexpr std::size_t perRow = 3;
    float width = 0;
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        if (i % perRow == 0)
            width = ShareOfWidth(std::min(perRow, buttons.size() - i));
        else
            ImGui::SameLine();
        ImGui::PushID(static_cast<int>(i));
        if (ImGui::Button(buttons[i].label.c_str(), {width, 38 * PanelScale()})) workspace.Push(buttons[i].name);
        Tip({}, keys.ChordOfButton(buttons[i].name));
        ImGui::PopID();
    }
}

ImVec4 ColourOf(const ColourBytes& colour) {
    return ImGui::ColorConvertU32ToFloat4(IM_COL32(colour[0], colour[1], colour[2], 255));
}

// The colours that keys set, as buttons.
void ShowSwatches(Workspace& workspace, const FittedKeys& keys, std::size_t parameter, std::size_t perRow,
                  const Panel::KeyPress& press) {
    std::size_t shown = 0;
    const float side = ShareOfWidth(perRow);
    for (const FittedKeys::Key& key : keys.keys) {
        if (!key.module || key.module->kind != ModuleKey::Kind::Set || key.module->settings.size() != 1) continue;
        const ModuleKey::Setting& setting = key.module->settings[0];
        const auto* colour = std::get_if<ColourBytes>(&setting.value);
        if (setting.parameter != parameter || colour == nullptr) continue;
        if (shown % perRow != 0) ImGui::SameLine();
        const std::string id = "##swatch" + std::to_string(shown++);
        const bool isChosen = workspace.Value(parameter) == setting.value;
        ImGui::PushStyleVar(ImGuiStyleVar_FrameBorderSize, isChosen ? 3.0F : 0.0F);
        ImGui::PushStyleColor(ImGuiCol_Border, ImVec4(1, 1, 1, 1));
        constexpr auto flags = ImGuiColorEditFlags_NoTooltip | ImGuiColorEditFlags_NoDragDrop;
        if (ImGui::ColorButton(id.c_str(), ColourOf(*colour), flags, {side, side})) press(key);
        ImGui::PopStyleColor();
        ImGui::PopStyleVar();
        Tip(key.about, ChordText(key.chord));
    }
}

// Those of the module's parameters that are shown now.
std::vector<PanelModel::Control> ShownControls(const Workspace& workspace, const PanelModel::Group& group) {
    std::vector<PanelModel::Control> shown = group.controls;
    std::erase_if(shown, [&](const PanelModel::Control& control) { return !workspace.IsShown(control.parameter); });
    return shown;
}

void ShowWorkspaceButton(const char* label, float width, WorkspaceAction action, const FittedKeys& keys,
                         std::vector<WorkspaceAction>& asked) {
    if (ImGui::Button(label, {width, 0})) asked.push_back(action);
    Tip({}, keys.ChordOf(action));
}

void ShowWorkspaceButtons(const FittedKeys& keys, std::vector<WorkspaceAction>& asked) {
    const float width = ShareOfWidth(2);
    ShowWorkspaceButton("Save picture", width, WorkspaceAction::SavePicture, keys, asked);
    ImGui::SameLine();
    ShowWorkspaceButton("Save strokes", width, WorkspaceAction::SaveOverlay, keys, asked);
    ShowWorkspaceButton("Full screen", width, WorkspaceAction::FullScreen, keys, asked);
    ImGui::SameLine();
    ShowWorkspaceButton("Keys", width, WorkspaceAction::Help, keys, asked);
}

}  // namespace

void Panel::ShowPlugIns(Workspace& workspace) {
    if (workspace.PlugIns().size() < 2) return;
    ImGui::SetNextItemWidth(-1);
    if (!ImGui::BeginCombo("##plug-in", workspace.Chosen()->name.c_str())) return;
    for (std::size_t i = 0; i < workspace.PlugIns().size(); ++i) {
        ImGui::PushID(static_cast<int>(i));
        if (ImGui::Selectable(workspace.PlugIns()[i].name.c_str(), i == workspace.ChosenIndex())) workspace.Choose(i);
        ImGui::PopID();
    }
    ImGui::EndCombo();
}

void Panel::ShowParameters(Workspace& workspace, const FittedKeys& keys, const KeyPress& press,
                           const std::function<void()>& showInk) {
    const Registration& registration = *workspace.Chosen()->registration;
    if (m_modelled != &registration) {
        m_model = MakePanelModel(registration, ThePanelLayout());
        m_modelled = &registration;
    }
    if (m_model.groups.empty()) showInk();
    for (const PanelModel::Group& group : m_model.groups) {
        ShowGroup(workspace, keys, press, group);
        if (&group == &m_model.groups.front()) showInk();
    }
}

void Panel::ShowGroup(Workspace& workspace, const FittedKeys& keys, const KeyPress& press,
                      const PanelModel::Group& group) {
    const Registration& registration = *workspace.Chosen()->registration;
    const auto controls = ShownControls(workspace, group);
    if (controls.empty()) return;
    ImGui::Spacing();
    if (!ImGui::CollapsingHeader(group.title.c_str(), ImGuiTreeNodeFlags_DefaultOpen)) return;
    for (const PanelModel::Control& control : controls) {
        ImGui::PushID(static_cast<int>(control.parameter));
        ImGui::BeginGroup();
        if (registration.parameters[control.parameter].kind == ParameterKind::Colour)
            ShowSwatches(workspace, keys, control.parameter, 8, press);
        m_controls.Show(workspace, control.parameter);
        ImGui::EndGroup();
        Tip(control.tip);
        ImGui::PopID();
    }
}

std::vector<WorkspaceAction> Panel::Show(Workspace& workspace, const FittedKeys& keys, WindowSize window,
                                         const Looks& looks) {
    std::vector<WorkspaceAction> asked;
    const bool isFolded = looks.isFolded;
    const int width = isFolded ? StripWidth() : PanelWidth();
    ImGui::SetNextWindowPos({static_cast<float>(window.width - width), 0});
    ImGui::SetNextWindowSize({static_cast<float>(width), static_cast<float>(window.height - StatusHeight())});
    constexpr auto flags = ImGuiWindowFlags_NoTitleBar | ImGuiWindowFlags_NoResize | ImGuiWindowFlags_NoMove |
                           ImGuiWindowFlags_NoCollapse | ImGuiWindowFlags_NoNav |
                           ImGuiWindowFlags_NoBringToFrontOnFocus;
    if (isFolded) ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, {8 * PanelScale(), 8 * PanelScale()});
    ImGui::Begin("panel", nullptr, flags);
    if (isFolded)
        ShowStrip(workspace, keys, looks.press, asked);
    else
        ShowWhole(workspace, keys, looks, asked);
    ImGui::End();
    if (isFolded) ImGui::PopStyleVar();
    return asked;
}

// What is needed at every stroke: colours, the module's buttons by their first letters, the video, and the way back.
void Panel::ShowStrip(Workspace& workspace, const FittedKeys& keys, const KeyPress& press,
                      std::vector<WorkspaceAction>& asked) {
    ShowWorkspaceButton("<<", -1, WorkspaceAction::FoldPanel, keys, asked);
    if (workspace.Video() != nullptr) ShowWorkspaceButton("Play", -1, WorkspaceAction::Pause, keys, asked);
    if (workspace.Chosen() == nullptr) return;
    const Registration& registration = *workspace.Chosen()->registration;
    for (const Button& button : registration.buttons) {
        ImGui::PushID(button.name.c_str());
        if (ImGui::Button(button.label.substr(0, 4).c_str(), {-1, 0})) workspace.Push(button.name);
        Tip(button.label, keys.ChordOfButton(button.name));
        ImGui::PopID();
    }
    for (std::size_t i = 0; i < registration.parameters.size(); ++i)
        if (registration.parameters[i].kind == ParameterKind::Colour && workspace.IsShown(i))
            ShowSwatches(workspace, keys, i, 1, press);
}

void Panel::ShowWhole(Workspace& workspace, const FittedKeys& keys, const Looks& looks,
                      std::vector<WorkspaceAction>& asked) {
    ShowPlugIns(workspace);
    ShowVideoPanel(workspace, keys, asked);
    if (workspace.Chosen() != nullptr) {
        ShowButtons(workspace, keys);
        const float footer = 2 * ImGui::GetFrameHeightWithSpacing() + 3 * ImGui::GetStyle().ItemSpacing.y;
        ImGui::BeginChild("parameters", {0, -footer});
        ShowParameters(workspace, keys, looks.press, [&] { looks.ink.Show(workspace, keys, looks.isChoosing, asked); });
        ImGui::EndChild();
    } else {
        ImGui::TextDisabled("This scene has no plug-in to draw with.");
    }
    ImGui::Separator();
    ShowWorkspaceButtons(keys, asked);
}

}  // namespace kel
