#include "kel/window/value_control.h"

#include <imgui.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "cli/error.h"
#include "kel/session/session_values.h"
#include "kel/workspace/panel_model.h"

namespace kel {
namespace {

constexpr float labelWidth = 146;  // pixels
constexpr float typedWidth = 50;   // pixels: four digits

// The label at the left; what follows stands beside it.
void Label(const Parameter& parameter) {
    ImGui::AlignTextToFramePadding();
    ImGui::TextDisabled("%s", parameter.label.c_str());
    ImGui::SameLine(labelWidth + ImGui::GetStyle().WindowPadding.x);
}

const Parameter& ParameterOf(const Workspace& workspace, std::size_t parameter) {
    return workspace.Chosen()->registration->parameters[parameter];
}

std::optional<ParameterValue> Switch(const Parameter& parameter, std::int32_t value) {
    bool isOn = value != 0;
    if (!ImGui::Checkbox(parameter.label.c_str(), &isOn)) return std::nullopt;
    return std::int32_t{isOn};
}

std::optional<ParameterValue> Choice(const Parameter& parameter, std::int32_t value) {
    std::optional<ParameterValue> chosen;
    Label(parameter);
    for (std::size_t i = 0; i < parameter.options.size(); ++i) {
        const auto option = static_cast<std::int32_t>(i);
        ImGui::PushID(option);
        if (ImGui::RadioButton(parameter.options[i].c_str(), value == option)) chosen = option;
        ImGui::PopID();
        const float room = ImGui::GetContentRegionMax().x - ImGui::GetItemRectMax().x + ImGui::GetWindowPos().x;
        const bool isLast = i + 1 == parameter.options.size();
        if (!isLast && ImGui::CalcTextSize(parameter.options[i + 1].c_str()).x + 44 < room) ImGui::SameLine();
    }
    return chosen;
}

std::optional<ParameterValue> Colour(const Parameter& parameter, const ColourBytes& value) {
    std::array<float, 4> colour{};
    for (std::size_t i = 0; i < 4; ++i) colour[i] = static_cast<float>(value[i]) / 255.0F;
    Label(parameter);
    ImGui::SetNextItemWidth(-1);
    if (!ImGui::ColorEdit4("##colour", colour.data(), ImGuiColorEditFlags_DisplayHex | ImGuiColorEditFlags_AlphaBar))
        return std::nullopt;
    ColourBytes chosen{};
    for (std::size_t i = 0; i < 4; ++i)
        chosen[i] = static_cast<std::uint8_t>(std::lround(std::clamp(colour[i], 0.0F, 1.0F) * 255.0F));
    return chosen;
}

std::optional<ParameterValue> Slider(const Parameter& parameter, const ParameterValue& value) {
    if (const auto* real = std::get_if<float>(&value)) {
        float moved = *real;
        if (!ImGui::SliderFloat("##slider", &moved, static_cast<float>(parameter.minimum),
                                static_cast<float>(parameter.maximum), "", ImGuiSliderFlags_NoInput))
            return std::nullopt;
        return moved;
    }
    int moved = std::get<std::int32_t>(value);
    if (!ImGui::SliderInt("##slider", &moved, static_cast<int>(parameter.minimum), static_cast<int>(parameter.maximum),
                          "", ImGuiSliderFlags_NoInput))
        return std::nullopt;
    return moved;
}

}  // namespace

void ValueControls::Set(Workspace& workspace, std::size_t parameter, const ParameterValue& value) {
    try {
        workspace.Set(parameter, value);
    } catch (const cli::Error& refusal) {
        m_refusal = refusal.what();
    }
}

std::optional<std::string> ValueControls::TakeRefusal() { return std::exchange(m_refusal, std::nullopt); }

// The field shows the value until somebody types into it, and again once that is over.
void ValueControls::ShowTyped(Workspace& workspace, std::size_t parameter, float width) {
    const Parameter& which = ParameterOf(workspace, parameter);
    std::array<char, 1024> shown{};
    const std::string text = SessionText(which, workspace.Value(parameter));
    std::copy_n(text.begin(), std::min(text.size(), shown.size() - 1), shown.begin());
    auto& buffer = m_typedIn == parameter ? m_typed : shown;
    ImGui::SetNextItemWidth(width);
    const bool isEntered = ImGui::InputText("##typed", buffer.data(), buffer.size(),
                                            ImGuiInputTextFlags_EnterReturnsTrue | ImGuiInputTextFlags_AutoSelectAll);
    const bool isOver = isEntered || ImGui::IsItemDeactivatedAfterEdit();
    if (isOver) {
        try {
            workspace.Set(parameter, TypedValue(which, buffer.data()));
        } catch (const cli::Error& refusal) {
            m_refusal = refusal.what();
        }
    }
    if (ImGui::IsItemActive() && !isOver) {
        m_typed = buffer;
        m_typedIn = parameter;
    } else if (m_typedIn == parameter) {
        m_typedIn.reset();
    }
}

void ValueControls::ShowNumber(Workspace& workspace, std::size_t parameter) {
    const Parameter& which = ParameterOf(workspace, parameter);
    Label(which);
    ImGui::SetNextItemWidth(ImGui::GetContentRegionAvail().x - typedWidth - ImGui::GetStyle().ItemSpacing.x);
    if (const auto moved = Slider(which, workspace.Value(parameter))) Set(workspace, parameter, *moved);
    ImGui::SameLine();
    ShowTyped(workspace, parameter, typedWidth);
}

void ValueControls::ShowPath(Workspace& workspace, std::size_t parameter) {
    const Parameter& which = ParameterOf(workspace, parameter);
    Label(which);
    ShowTyped(workspace, parameter, ImGui::GetContentRegionAvail().x - typedWidth - ImGui::GetStyle().ItemSpacing.x);
    ImGui::SameLine();
    if (ImGui::Button("None", {typedWidth, 0})) Set(workspace, parameter, std::string());
}

void ValueControls::Show(Workspace& workspace, std::size_t parameter) {
    const Parameter& which = ParameterOf(workspace, parameter);
    const ParameterValue value = workspace.Value(parameter);
    std::optional<ParameterValue> chosen;
    switch (which.kind) {
        case ParameterKind::Bool:
            chosen = Switch(which, std::get<std::int32_t>(value));
            break;
        case ParameterKind::Radio:
            chosen = Choice(which, std::get<std::int32_t>(value));
            break;
        case ParameterKind::Colour:
            chosen = Colour(which, std::get<ColourBytes>(value));
            break;
        case ParameterKind::Int:
        case ParameterKind::Float:
            return ShowNumber(workspace, parameter);
        case ParameterKind::Image:
            return ShowPath(workspace, parameter);
    }
    if (chosen) Set(workspace, parameter, *chosen);
}

}  // namespace kel
