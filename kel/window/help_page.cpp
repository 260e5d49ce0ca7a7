#include "kel/window/help_page.h"

#include <imgui.h>

namespace kel {
namespace {

void ShowRow(const FittedKeys::Key& key) {
    const bool works = key.action || key.module;
    const ImVec4 chordColour = ImGui::GetStyleColorVec4(works ? ImGuiCol_CheckMark : ImGuiCol_TextDisabled);
    ImGui::TextColored(chordColour, "%s", ChordText(key.chord).c_str());
    ImGui::TableNextColumn();
    const std::string about = key.about.empty() && key.action ? std::string(ActionName(*key.action)) : key.about;
    ImGui::TextColored(ImGui::GetStyleColorVec4(works ? ImGuiCol_Text : ImGuiCol_TextDisabled), "%s", about.c_str());
}

}  // namespace

void ShowHelpPage(const FittedKeys& keys, const PictureArea& area) {
    ImGui::SetNextWindowPos({static_cast<float>(area.x) + static_cast<float>(area.width) / 2,
                             static_cast<float>(area.y) + static_cast<float>(area.height) / 2},
                            ImGuiCond_Always, {0.5F, 0.5F});
    ImGui::PushStyleVar(ImGuiStyleVar_WindowRounding, 10);
    ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, {28, 22});
    constexpr auto flags = ImGuiWindowFlags_NoTitleBar | ImGuiWindowFlags_NoResize | ImGuiWindowFlags_NoMove |
                           ImGuiWindowFlags_AlwaysAutoResize | ImGuiWindowFlags_NoNav;
    ImGui::Begin("keys", nullptr, flags);
    ImGui::TextUnformatted("Keys");
    ImGui::Separator();
    constexpr int columns = 4;  // two keys a row
    ImGui::PushStyleVar(ImGuiStyleVar_CellPadding, {14, 3});
    if (ImGui::BeginTable("keys", columns, ImGuiTableFlags_SizingFixedFit)) {
        const std::size_t rows = (keys.keys.size() + 1) / 2;
        for (std::size_t row = 0; row < rows; ++row)
            for (std::size_t i = row; i < keys.keys.size(); i += rows) {
                ImGui::TableNextColumn();
                ShowRow(keys.keys[i]);
            }
        ImGui::EndTable();
    }
    ImGui::PopStyleVar();
    ImGui::End();
    ImGui::PopStyleVar(2);
}

}  // namespace kel
