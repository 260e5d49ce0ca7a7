#include "kel/workspace/eraser_end.h"

#include <algorithm>
#include <string_view>

namespace kel {
namespace {

constexpr std::string_view brushType = "BrushType";
constexpr std::string_view eraser = "Erase";

}  // namespace

void EraserEnd::Use(Workspace& workspace, bool isEraser) {
    const Workspace::PlugIn* const chosen = workspace.Chosen();
    if (chosen == nullptr) return;
    const Parameter* const parameter = chosen->registration->FindParameter(brushType);
    if (parameter == nullptr) return;
    const auto option = std::ranges::find(parameter->options, eraser);
    if (option == parameter->options.end()) return;
    const auto index = static_cast<std::size_t>(parameter - chosen->registration->parameters.data());
    const ParameterValue erases = static_cast<std::int32_t>(option - parameter->options.begin());
    const ParameterValue now = workspace.Value(index);
    if (m_before && (m_before->registration != chosen->registration || now != erases)) m_before.reset();
    if (isEraser && now != erases) {
        m_before = Before{chosen->registration, now};
        workspace.Set(index, erases);
    } else if (!isEraser && m_before) {
        workspace.Set(index, m_before->value);
        m_before.reset();
    }
}

}  // namespace kel
