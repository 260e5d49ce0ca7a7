#include "kel/window/open_page.h"

#include <imgui.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <utility>

#include "kel/live/live_name.h"
#include "kel/window/panel_style.h"

namespace kel {
namespace {

std::string Lower(std::string text) {
    for (char& letter : text) letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return text;
}

}  // namespace

void OpenPage::Open(const std::filesystem::path& present, const RecentFiles& recent) {
    m_rows.clear();
    for (const auto& file : recent.Files()) m_rows.push_back({file, true});
    std::error_code failure;
    const auto folder = std::filesystem::absolute(present, failure).parent_path();
    for (const auto& file : OpenableFilesIn(folder)) m_rows.push_back({file, false});
    m_filter = {};
    m_isOpen = m_isFresh = true;
}

bool OpenPage::Fits(const Row& row) const {
    return Lower(row.file.filename().string()).find(Lower(m_filter.data())) != std::string::npos;
}

// The files that have what is typed in their names; live pictures are in no list.
std::optional<std::string> OpenPage::ShowRows(bool isEntered) {
    std::optional<std::string> chosen;
    if (const std::string typed = m_filter.data(); IsLiveName(typed)) {
        ImGui::TextDisabled("Return opens these live pictures.");
        if (isEntered) chosen = typed;
        return chosen;
    }
    const Row* before = nullptr;
    for (const Row& row : m_rows) {
        if (!Fits(row)) continue;
        if (before == nullptr || before->isRecent != row.isRecent)
            ImGui::TextDisabled("%s", row.isRecent ? "Opened last" : "In this folder");
        before = &row;
        ImGui::PushID(&row);
        const bool isFirst = !chosen;
        if (ImGui::Selectable(row.file.filename().c_str()) || (isEntered && isFirst)) chosen = row.file.string();
        if (ImGui::IsItemHovered()) ImGui::SetTooltip("%s", row.file.c_str());
        ImGui::PopID();
    }
    if (before == nullptr) ImGui::TextDisabled("No picture and no film is called so.");
    return chosen;
}

std::optional<std::string> OpenPage::Show(const PictureArea& area) {
    if (!m_isOpen) return std::nullopt;
    const float scale = PanelScale();
    ImGui::SetNextWindowPos({static_cast<float>(area.x) + static_cast<float>(area.width) / 2,
                             static_cast<float>(area.y) + static_cast<float>(area.height) / 2},
                            ImGuiCond_Always, {0.5F, 0.5F});
    ImGui::SetNextWindowSize({std::min(560 * scale, static_cast<float>(area.width) - 16),
                              std::min(460 * scale, static_cast<float>(area.height) - 16)});
    ImGui::PushStyleVar(ImGuiStyleVar_WindowRounding, 10);
    ImGui::Begin("open", nullptr,
                 ImGuiWindowFlags_NoTitleBar | ImGuiWindowFlags_NoResize | ImGuiWindowFlags_NoMove |
                     ImGuiWindowFlags_NoCollapse);
    ImGui::TextUnformatted("Open");
    ImGui::SetNextItemWidth(-1);
    if (std::exchange(m_isFresh, false)) ImGui::SetKeyboardFocusHere();
    const bool isEntered =
        ImGui::InputTextWithHint("##filter", "part of a name, or an address; Return opens the first one",
                                 m_filter.data(), m_filter.size(), ImGuiInputTextFlags_EnterReturnsTrue);
    ImGui::BeginChild("files");
    std::optional<std::string> chosen = ShowRows(isEntered);
    ImGui::EndChild();
    if (ImGui::IsKeyPressed(ImGui::GetKeyIndex(ImGuiKey_Escape))) m_isOpen = false;
    ImGui::End();
    ImGui::PopStyleVar();
    if (chosen) m_isOpen = false;
    return chosen;
}

}  // namespace kel
