#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "kel/session/session_json.h"
#include "kel/workspace/recording.h"
#include "telestrator/journal/journal_record.h"

namespace kel {
namespace {

using nlohmann::ordered_json;

ordered_json ParametersJson(const InkEdit& edit, const Registration& module) {
    ordered_json parameters = ordered_json::object();
    for (const SettingInput& value : edit.values) {
        const Parameter& parameter = module.parameters[value.parameter];
        parameters[parameter.name] = JsonValue(parameter, value.value);
    }
    return parameters;
}

// A slot may hold something else when the recording is played, so it has the strokes themselves.
ordered_json StrokesJson(const InkEdit& edit) {
    ordered_json lines = ordered_json::array();
    chalkpane::JournalRecord record;
    for (const chalkpane::SharedStroke& stroke : edit.strokes) {
        ++record.number;
        record.strokes = {stroke};
        lines.push_back(RecordText(record));
    }
    if (lines.empty()) lines.push_back("0 clear");  // a list has something in it
    return lines;
}

ordered_json FadeJson(const chalkpane::FadeSettings& fade, double fieldsPerSecond) {
    if (fade.waitFields < 0) return false;
    return {{"after", fade.waitFields / fieldsPerSecond}, {"over", fade.overFields}};
}

}  // namespace

void Recording::AddInk(std::int64_t field, std::size_t container, const InkEdit& edit, const Registration& module,
                       double fieldsPerSecond) {
    ordered_json event = {{"field", field}, {"container", m_names[container]}};
    switch (edit.kind) {
        case InkEditKind::Undo:
            event["undo"] = edit.number;
            break;
        case InkEditKind::Redo:
            event["redo"] = edit.number;
            break;
        case InkEditKind::Remove:
            event["removeStroke"] = edit.number;
            break;
        case InkEditKind::Move:
            event["by"] = {edit.right, edit.down};
            event["moveStroke"] = edit.number;
            break;
        case InkEditKind::Recolour:
            event["parameters"] = ParametersJson(edit, module);
            event["recolourStroke"] = edit.number;
            break;
        case InkEditKind::Recall:
            event["inPlace"] = edit.recall == chalkpane::InkDrawing::Recall::InPlace;
            event["recallStrokes"] = StrokesJson(edit);
            break;
        case InkEditKind::Fade:
            event["fade"] = FadeJson(edit.fade, fieldsPerSecond);
            break;
        case InkEditKind::Keep:
            return;  // changes nothing that is seen
    }
    AddLine(event.dump());
}

}  // namespace kel
