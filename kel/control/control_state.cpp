#include "kel/control/control_state.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "kel/control/control_json.h"

namespace kel {
namespace {

using nlohmann::ordered_json;

ordered_json ParameterEvent(const Workspace::PlugIn& plugIn, std::size_t index, const ParameterValue& value) {
    const Parameter& parameter = plugIn.registration->parameters[index];
    return {{"event", "parameter"},
            {"container", plugIn.name},
            {"name", parameter.name},
            {"value", ControlValueJson(parameter, value)}};
}

}  // namespace

std::vector<std::string> ControlState::TakeEvents(Workspace& workspace) {
    Events events;
    if (std::exchange(m_workspace, &workspace) != &workspace) {
        *this = {};
        m_workspace = &workspace;
        events.push_back(ControlJsonText({{"event", "opened"}, {"file", workspace.File().filename().string()}}));
    }
    TellChosen(workspace, events);
    TellParameters(workspace, events);
    TellVideo(workspace, events);
    TellLive(workspace, events);
    TellInk(workspace, events);
    return events;
}

void ControlState::TellParameters(Workspace& workspace, Events& events) {
    const auto plugIns = workspace.PlugIns();
    m_values.resize(plugIns.size());
    for (std::size_t i = 0; i < plugIns.size(); ++i) {
        const auto& parameters = plugIns[i].registration->parameters;
        const bool isNew = m_values[i].empty();
        m_values[i].resize(parameters.size());
        for (std::size_t k = 0; k < parameters.size(); ++k) {
            ParameterValue value = workspace.TheHost().GetParameter(plugIns[i].id, parameters[k].name);
            if (!isNew && value == m_values[i][k]) continue;
            events.push_back(ControlJsonText(ParameterEvent(plugIns[i], k, value)));
            m_values[i][k] = std::move(value);
        }
    }
}

void ControlState::TellChosen(const Workspace& workspace, Events& events) {
    if (workspace.Chosen() == nullptr || m_chosen == workspace.ChosenIndex()) return;
    m_chosen = workspace.ChosenIndex();
    events.push_back(ControlJsonText({{"event", "container"}, {"name", workspace.Chosen()->name}}));
}

// Of a film that plays the frame is told some times a second, and not each.
void ControlState::TellVideo(const Workspace& workspace, Events& events) {
    constexpr double framesTold = 5;  // in a second
    if (workspace.Video() == nullptr) return;
    const VideoClock& clock = workspace.Video()->Clock();
    VideoLook look{workspace.VideoFrame(),
                   clock.IsRunning(workspace.NextField()),
                   clock.Loops(),
                   clock.Speed(),
                   clock.In(),
                   clock.Out()};
    const auto since = static_cast<double>(workspace.NextField() - m_videoField);
    if (m_video && look.isRunning && since < workspace.FieldsPerSecond() / framesTold) look.frame = m_video->frame;
    if (m_video == look) return;
    m_video = look;
    m_videoField = workspace.NextField();
    ordered_json event = {{"event", "film"}};
    event.update(ControlVideoJson(workspace));
    events.push_back(ControlJsonText(event));
}

// Whether pictures come, and whether they are seen or their replay.
void ControlState::TellLive(const Workspace& workspace, Events& events) {
    if (workspace.Live() == nullptr) return;
    const LiveLook look{workspace.Live()->IsThere(), workspace.Video() != nullptr, workspace.DoesInkLeave()};
    if (m_live == look) return;
    m_live = look;
    events.push_back(ControlJsonText(
        {{"event", "live"}, {"there", look.isThere}, {"replay", look.isReplay}, {"inkLeaves", look.inkLeaves}}));
}

void ControlState::TellInk(const Workspace& workspace, Events& events) {
    constexpr double countsInASecond = 10;
    const auto since = static_cast<double>(workspace.NextField() - m_strokesField);
    const ContainerInk* ink = workspace.Ink();
    if (ink != nullptr && (!m_strokes || since >= workspace.FieldsPerSecond() / countsInASecond)) {
        m_strokesField = workspace.NextField();
        const std::size_t strokes = ink->StrokesKept();
        if (std::exchange(m_strokes, strokes) != strokes)
            events.push_back(ControlJsonText({{"event", "ink"}, {"strokes", strokes}}));
    }
    const Workspace::Fading& fading = workspace.InkFading();
    if (m_fading && m_fading->isOn == fading.isOn && m_fading->after == fading.after && m_fading->over == fading.over)
        return;
    m_fading = fading;
    events.push_back(ControlJsonText({{"event", "fade"}, {"fade", ControlFadeJson(workspace)}}));
}

}  // namespace kel
