#include "kel/window/video_panel.h"

#include <imgui.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "kel/window/panel_style.h"

namespace kel {
namespace {

// "1:07.48 of 2:30.00"
std::string TimeText(double seconds) {
    std::array<char, 32> text{};
    const int minutes = static_cast<int>(seconds / 60);
    std::snprintf(text.data(), text.size(), "%d:%05.2f", minutes, seconds - minutes * 60.0);
    return text.data();
}

void ShowTransport(const VideoClock& clock, bool isRunning, const FittedKeys& keys,
                   std::vector<WorkspaceAction>& asked) {
    struct Row {
        const char* label;
        WorkspaceAction action;
    };
    const std::array rows{Row{"|<", WorkspaceAction::Start}, Row{"<", WorkspaceAction::StepBack},
                          Row{isRunning ? "Pause" : "Play", WorkspaceAction::Pause}, Row{">", WorkspaceAction::Step},
                          Row{"Loop", WorkspaceAction::Loop}};
    const float gaps = ImGui::GetStyle().ItemSpacing.x * static_cast<float>(rows.size() - 1);
    const float unit = (ImGui::GetContentRegionAvail().x - gaps) / 7;
    for (const Row& row : rows) {
        if (&row != &rows.front()) ImGui::SameLine();
        const bool isWide = row.action == WorkspaceAction::Pause || row.action == WorkspaceAction::Loop;
        const bool isLit = row.action == WorkspaceAction::Loop && clock.Loops();
        if (isLit) ImGui::PushStyleColor(ImGuiCol_Text, ImGui::GetStyleColorVec4(ImGuiCol_CheckMark));
        if (ImGui::Button(row.label, {isWide ? unit * 2 : unit, 34 * PanelScale()})) asked.push_back(row.action);
        if (isLit) ImGui::PopStyleColor();
        if (ImGui::IsItemHovered()) ImGui::SetTooltip("Key: %s", keys.ChordOf(row.action).c_str());
    }
}

// The speed as a list, and the points between which it plays.
void ShowSpeed(Workspace& workspace, const VideoClock& clock, const FittedKeys& keys,
               std::vector<WorkspaceAction>& asked) {
    struct Row {
        const char* label;
        double speed;
    };
    constexpr std::array rows{Row{"1/8 x", 0.125}, Row{"1/4 x", 0.25}, Row{"1/2 x", 0.5},
                              Row{"1 x", 1},       Row{"2 x", 2},      Row{"4 x", 4}};
    const float unit = (ImGui::GetContentRegionAvail().x - 3 * ImGui::GetStyle().ItemSpacing.x) / 4;
    const auto chosen = std::ranges::find(rows, clock.Speed(), &Row::speed);
    ImGui::SetNextItemWidth(unit);
    if (ImGui::BeginCombo("##speed", chosen == rows.end() ? "" : chosen->label)) {
        for (const Row& row : rows)
            if (ImGui::Selectable(row.label, row.speed == clock.Speed())) {
                VideoChange change;
                change.speed = row.speed;
                workspace.ChangeVideo(change);
            }
        ImGui::EndCombo();
    }
    for (const auto& [label, action] :
         {std::pair("From", WorkspaceAction::MarkIn), std::pair("To", WorkspaceAction::MarkOut),
          std::pair("All", WorkspaceAction::NoMarks)}) {
        ImGui::SameLine();
        if (ImGui::Button(label, {unit, 0})) asked.push_back(action);
        if (ImGui::IsItemHovered()) ImGui::SetTooltip("Key: %s", keys.ChordOf(action).c_str());
    }
    if (clock.In() > 0 || clock.Out() < clock.Frames() - 1)
        ImGui::TextDisabled("plays frames %lld to %lld", static_cast<long long>(clock.In()),
                            static_cast<long long>(clock.Out()));
}

// Between what is live and its replay.
void ShowLive(const Workspace& workspace, const FittedKeys& keys, std::vector<WorkspaceAction>& asked) {
    struct Row {
        const char* label;
        WorkspaceAction action;
        bool isLit;
    };
    const bool isReplay = workspace.Video() != nullptr;
    const std::array rows{Row{"Live", WorkspaceAction::Live, !isReplay},
                          Row{"Replay", WorkspaceAction::StepBack, isReplay},
                          Row{"Save clip", WorkspaceAction::SaveClip, false}};
    const float gaps = ImGui::GetStyle().ItemSpacing.x * static_cast<float>(rows.size() - 1);
    const float width = (ImGui::GetContentRegionAvail().x - gaps) / static_cast<float>(rows.size());
    for (const Row& row : rows) {
        if (&row != &rows.front()) ImGui::SameLine();
        if (row.isLit) ImGui::PushStyleColor(ImGuiCol_Text, ImGui::GetStyleColorVec4(ImGuiCol_CheckMark));
        if (ImGui::Button(row.label, {width, 34 * PanelScale()}) && !row.isLit) asked.push_back(row.action);
        if (row.isLit) ImGui::PopStyleColor();
        if (ImGui::IsItemHovered()) ImGui::SetTooltip("Key: %s", keys.ChordOf(row.action).c_str());
    }
    bool leaves = workspace.DoesInkLeave();
    if (ImGui::Checkbox("Ink leaves with its moment", &leaves)) asked.push_back(WorkspaceAction::InkLeaves);
    if (ImGui::IsItemHovered())
        ImGui::SetTooltip("What is drawn on a replay is seen at that moment alone. Key: %s",
                          keys.ChordOf(WorkspaceAction::InkLeaves).c_str());
    if (!isReplay) ImGui::Separator();
}

}  // namespace

void ShowVideoPanel(Workspace& workspace, const FittedKeys& keys, std::vector<WorkspaceAction>& asked) {
    if (workspace.Live() != nullptr) ShowLive(workspace, keys, asked);
    const VideoShow* video = workspace.Video();
    if (video == nullptr) return;
    const VideoClock& clock = video->Clock();
    const std::int64_t last = clock.Frames() - 1;
    std::int64_t frame = workspace.VideoFrame();
    ShowTransport(clock, clock.IsRunning(workspace.NextField()), keys, asked);
    ImGui::SetNextItemWidth(-1);
    constexpr std::int64_t first = 0;
    if (ImGui::SliderScalar("##frame", ImGuiDataType_S64, &frame, &first, &last, "frame %lld",
                            ImGuiSliderFlags_NoInput))
        workspace.ChangeVideo({frame, std::nullopt, std::nullopt});
    ShowSpeed(workspace, clock, keys, asked);
    const double seconds = static_cast<double>(frame) / video->FramesPerSecond();
    const double length = static_cast<double>(clock.Frames()) / video->FramesPerSecond();
    ImGui::TextDisabled("%s of %s", TimeText(seconds).c_str(), TimeText(length).c_str());
    ImGui::Separator();
}

}  // namespace kel
