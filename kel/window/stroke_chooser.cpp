#include "kel/window/stroke_chooser.h"

#include <imgui.h>

#include <cstdlib>
#include <utility>
#include <variant>
#include <vector>

namespace kel {
namespace {

InkEdit EditOf(InkEditKind kind, std::size_t stroke) {
    InkEdit edit;
    edit.kind = kind;
    edit.number = stroke;
    return edit;
}

bool Deletes(const FittedKeys::Key& key) {
    const KeyChord& chord = key.chord;
    return (chord.key == "Delete" || chord.key == "Backspace") && !chord.control && !chord.shift && !chord.alt;
}

// The colour that the key sets, and nothing else; empty: it does something else.
std::vector<SettingInput> ColourOf(const FittedKeys::Key& key) {
    if (!key.module || key.module->kind != ModuleKey::Kind::Set || key.module->settings.size() != 1) return {};
    const ModuleKey::Setting& setting = key.module->settings[0];
    if (!std::holds_alternative<ColourBytes>(setting.value)) return {};
    return {{setting.parameter, setting.value}};
}

}  // namespace

void StrokeChooser::Toggle() {
    const bool isOn = !m_isOn;
    *this = {};
    m_isOn = isOn;
}

void StrokeChooser::Point(Workspace& workspace, PointerKind kind, const ScenePixel& at) {
    ContainerInk* const ink = workspace.IsPlayingSession() ? nullptr : workspace.Ink();
    if (ink == nullptr) return;
    m_to = at;
    if (kind == PointerKind::Press) {
        m_chosen = m_under = ink->StrokeAt(at.x, at.y);
        m_isDragged = m_chosen.has_value();
        m_from = at;
    } else if (kind == PointerKind::Move && !m_isDragged) {
        m_under = ink->StrokeAt(at.x, at.y);
    } else if (kind == PointerKind::Release && std::exchange(m_isDragged, false) && m_from != m_to) {
        InkEdit edit = EditOf(InkEditKind::Move, *m_chosen);
        edit.right = m_to.x - m_from.x;
        edit.down = m_to.y - m_from.y;
        workspace.Edit(edit);
    }
}

bool StrokeChooser::TakeKey(Workspace& workspace, const FittedKeys::Key& key) {
    if (!m_isOn || !m_chosen || m_isDragged) return false;
    if (Deletes(key)) {
        workspace.Edit(EditOf(InkEditKind::Remove, *m_chosen));
        m_chosen = m_under = std::nullopt;
        return true;
    }
    InkEdit edit = EditOf(InkEditKind::Recolour, *m_chosen);
    edit.values = ColourOf(key);
    if (edit.values.empty()) return false;
    workspace.Edit(edit);
    return true;
}

void StrokeChooser::ShowOutline(const Workspace& workspace, const PictureArea& area, std::size_t stroke,
                                bool isChosen) const {
    const WindowSize scene = workspace.SceneSize();
    const double right = isChosen && m_isDragged ? m_to.x - m_from.x : 0;
    const double down = isChosen && m_isDragged ? m_to.y - m_from.y : 0;
    ImDrawList* const list = ImGui::GetWindowDrawList();
    for (const auto& line : workspace.Ink()->OutlineOf(stroke)) {
        std::vector<ImVec2> places;
        places.reserve(line.size());
        for (const auto& place : line)
            places.emplace_back(static_cast<float>(area.x + (place[0] + right) * area.width / scene.width),
                                static_cast<float>(area.y + (place[1] + down) * area.height / scene.height));
        const auto count = static_cast<int>(places.size());
        list->AddPolyline(places.data(), count, IM_COL32(0, 0, 0, 200), ImDrawFlags_None, 4.0F);
        list->AddPolyline(places.data(), count, isChosen ? IM_COL32(255, 255, 255, 255) : IM_COL32(255, 255, 255, 150),
                          ImDrawFlags_None, 2.0F);
    }
}

void StrokeChooser::Show(const Workspace& workspace, const PictureArea& area) const {
    if (!m_isOn || workspace.Ink() == nullptr || workspace.IsPlayingSession()) return;
    ImGui::SetNextWindowPos({static_cast<float>(area.x), static_cast<float>(area.y)});
    ImGui::SetNextWindowSize({static_cast<float>(area.width), static_cast<float>(area.height)});
    constexpr auto flags = ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoInputs | ImGuiWindowFlags_NoBackground |
                           ImGuiWindowFlags_NoNav | ImGuiWindowFlags_NoBringToFrontOnFocus;
    ImGui::Begin("outlines", nullptr, flags);
    ImGui::TextUnformatted("Choosing strokes");
    if (m_under && m_under != m_chosen) ShowOutline(workspace, area, *m_under, false);
    if (m_chosen) ShowOutline(workspace, area, *m_chosen, true);
    ImGui::End();
}

}  // namespace kel
