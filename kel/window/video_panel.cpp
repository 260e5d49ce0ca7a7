#include "kel/window/video_panel.h"

#include <imgui.h>

#include <array>
#include <cstdio>

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
        if (ImGui::Button(row.label, {isWide ? unit * 2 : unit, 34})) asked.push_back(row.action);
        if (isLit) ImGui::PopStyleColor();
        if (ImGui::IsItemHovered()) ImGui::SetTooltip("Key: %s", keys.ChordOf(row.action).c_str());
    }
}

}  // namespace

void ShowVideoPanel(Workspace& workspace, const FittedKeys& keys, std::vector<WorkspaceAction>& asked) {
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
    const double seconds = static_cast<double>(frame) / video->FramesPerSecond();
    const double length = static_cast<double>(clock.Frames()) / video->FramesPerSecond();
    ImGui::TextDisabled("%s of %s", TimeText(seconds).c_str(), TimeText(length).c_str());
    ImGui::Separator();
}

}  // namespace kel
