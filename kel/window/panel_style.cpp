#include "kel/window/panel_style.h"

#include <imgui.h>

#include <array>
#include <cmath>
#include <filesystem>

namespace kel {
namespace {

constexpr float fontSize = 16;  // pixels

struct ColourRow {
    ImGuiCol what;
    ImU32 colour;
};

constexpr ImU32 ink = IM_COL32(18, 21, 26, 255);
constexpr ImU32 surface = IM_COL32(27, 31, 38, 255);
constexpr ImU32 raised = IM_COL32(44, 50, 60, 255);
constexpr ImU32 lit = IM_COL32(62, 70, 83, 255);
constexpr ImU32 accent = IM_COL32(255, 200, 40, 255);
constexpr ImU32 accentLit = IM_COL32(255, 217, 97, 255);
constexpr ImU32 text = IM_COL32(230, 233, 238, 255);
constexpr ImU32 faintText = IM_COL32(138, 147, 160, 255);

constexpr std::array colours{
    ColourRow{ImGuiCol_Text, text},
    ColourRow{ImGuiCol_TextDisabled, faintText},
    ColourRow{ImGuiCol_WindowBg, ink},
    ColourRow{ImGuiCol_PopupBg, surface},
    ColourRow{ImGuiCol_Border, raised},
    ColourRow{ImGuiCol_FrameBg, surface},
    ColourRow{ImGuiCol_FrameBgHovered, raised},
    ColourRow{ImGuiCol_FrameBgActive, lit},
    ColourRow{ImGuiCol_CheckMark, accent},
    ColourRow{ImGuiCol_SliderGrab, accent},
    ColourRow{ImGuiCol_SliderGrabActive, accentLit},
    ColourRow{ImGuiCol_Button, raised},
    ColourRow{ImGuiCol_ButtonHovered, lit},
    ColourRow{ImGuiCol_ButtonActive, faintText},
    ColourRow{ImGuiCol_Header, surface},
    ColourRow{ImGuiCol_HeaderHovered, raised},
    ColourRow{ImGuiCol_HeaderActive, lit},
    ColourRow{ImGuiCol_Separator, raised},
    ColourRow{ImGuiCol_PlotHistogram, accent},
    ColourRow{ImGuiCol_ScrollbarBg, ink},
    ColourRow{ImGuiCol_ScrollbarGrab, raised},
    ColourRow{ImGuiCol_ScrollbarGrabHovered, lit},
};

float& Scale() {
    static float scale = 1;
    return scale;
}

int Scaled(float pixels) { return static_cast<int>(std::lround(pixels * Scale())); }

// Where desktops have a plain, readable font; without one ImGui's own is taken.
void LoadFont() {
    constexpr std::array files{"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", "/usr/share/fonts/TTF/DejaVuSans.ttf",
                               "/usr/share/fonts/dejavu-sans-fonts/DejaVuSans.ttf",
                               "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf"};
    std::error_code failure;
    for (const char* file : files)
        if (std::filesystem::exists(file, failure) &&
            ImGui::GetIO().Fonts->AddFontFromFileTTF(file, fontSize * Scale()) != nullptr)
            return;
    ImGui::GetIO().Fonts->AddFontDefault();
    ImGui::GetIO().FontGlobalScale = Scale();
}

}  // namespace

float PanelScale() { return Scale(); }
int PanelWidth() { return Scaled(360); }
int StripWidth() { return Scaled(64); }
int StatusHeight() { return Scaled(32); }

void StylePanel(float scale) {
    Scale() = scale;
    ImGui::StyleColorsDark();
    ImGuiStyle& style = ImGui::GetStyle();
    for (const ColourRow& row : colours) style.Colors[row.what] = ImGui::ColorConvertU32ToFloat4(row.colour);
    style.WindowPadding = {16, 14};
    style.FramePadding = {8, 5};
    style.ItemSpacing = {8, 8};
    style.ItemInnerSpacing = {8, 6};
    style.WindowRounding = 0;
    style.WindowBorderSize = 0;
    style.FrameRounding = 5;
    style.GrabRounding = 5;
    style.GrabMinSize = 12;
    style.PopupRounding = 6;
    style.ScrollbarSize = 10;
    style.ScaleAllSizes(scale);
    LoadFont();
}

}  // namespace kel
