#include "host/window/film_panel.h"

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

void ShowTransport(const FilmClock& clock, bool isRunning, const FittedKeys& keys, std::vector<DeskAction>& asked) {
    struct Row {
        const char* label;
        DeskAction action;
    };
    const std::array rows{Row{"|<", DeskAction::Start}, Row{"<", DeskAction::StepBack},
                          Row{isRunning ? "Pause" : "Play", DeskAction::Pause}, Row{">", DeskAction::Step},
                          Row{"Loop", DeskAction::Loop}};
    const float gaps = ImGui::GetStyle().ItemSpacing.x * static_cast<float>(rows.size() - 1);
    const float unit = (ImGui::GetContentRegionAvail().x - gaps) / 7;
    for (const Row& row : rows) {
        if (&row != &rows.front()) ImGui::SameLine();
        const bool isWide = row.action == DeskAction::Pause || row.action == DeskAction::Loop;
        const bool isLit = row.action == DeskAction::Loop && clock.Loops();
        if (isLit) ImGui::PushStyleColor(ImGuiCol_Text, ImGui::GetStyleColorVec4(ImGuiCol_CheckMark));
        if (ImGui::Button(row.label, {isWide ? unit * 2 : unit, 34})) asked.push_back(row.action);
        if (isLit) ImGui::PopStyleColor();
        if (ImGui::IsItemHovered()) ImGui::SetTooltip("Key: %s", keys.ChordOf(row.action).c_str());
    }
}

}  // namespace

void ShowFilmPanel(Desk& desk, const FittedKeys& keys, std::vector<DeskAction>& asked) {
    const FilmShow* film = desk.Film();
    if (film == nullptr) return;
    const FilmClock& clock = film->Clock();
    const std::int64_t last = clock.Frames() - 1;
    std::int64_t frame = desk.FilmFrame();
    ShowTransport(clock, clock.IsRunning(desk.NextField()), keys, asked);
    ImGui::SetNextItemWidth(-1);
    constexpr std::int64_t first = 0;
    if (ImGui::SliderScalar("##frame", ImGuiDataType_S64, &frame, &first, &last, "frame %lld",
                            ImGuiSliderFlags_NoInput))
        desk.ChangeFilm({frame, std::nullopt, std::nullopt});
    const double seconds = static_cast<double>(frame) / film->FramesPerSecond();
    const double length = static_cast<double>(clock.Frames()) / film->FramesPerSecond();
    ImGui::TextDisabled("%s of %s", TimeText(seconds).c_str(), TimeText(length).c_str());
    ImGui::Separator();
}

}  // namespace kel
