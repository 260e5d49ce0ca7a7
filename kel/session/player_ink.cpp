#include <algorithm>
#include <cmath>
#include <string>

#include "cli/error.h"
#include "kel/session/player.h"

namespace kel {
namespace {

// The strokes that a session may have drawn before that field, wherever they were.
std::int64_t StrokesBefore(const Session& session, std::int64_t field) {
    return std::ranges::count_if(session.events, [&](const SessionEvent& event) {
        if (event.field >= field) return false;
        const auto* pointer = std::get_if<PointerEvent>(&event.what);
        return std::holds_alternative<StrokeEvent>(event.what) ||
               (pointer != nullptr && pointer->kind == PointerKind::Press);
    });
}

const char* WordOf(InkEvent::Kind kind) {
    switch (kind) {
        case InkEvent::Kind::Undo:
            return "undo";
        case InkEvent::Kind::Redo:
            return "redo";
        case InkEvent::Kind::Remove:
            return "removeStroke";
        case InkEvent::Kind::Move:
            return "moveStroke";
        case InkEvent::Kind::Recolour:
            return "recolourStroke";
    }
    return "";
}

}  // namespace

void Player::CheckStroke(const SessionEvent& event, const InkEvent& ink) const {
    if (ink.kind == InkEvent::Kind::Undo || ink.kind == InkEvent::Kind::Redo) return;
    if (ink.number <= StrokesBefore(m_session, event.field)) return;
    throw cli::Error(
        m_session.file.string(), event.place + "/" + WordOf(ink.kind),
        "there is no stroke " + std::to_string(ink.number) + " before field " + std::to_string(event.field));
}

Player::InkEdit Player::PrepareInk(const SessionEvent& event, const InkEvent& ink) {
    CheckStroke(event, ink);
    InkEdit edit;
    edit.kind = ink.kind;
    edit.number = static_cast<std::size_t>(ink.number);
    edit.right = static_cast<std::int32_t>(std::lround(ink.by.x));
    edit.down = static_cast<std::int32_t>(std::lround(ink.by.y));
    const Module& module = *m_containers[ink.container].module;
    const auto& parameters = module.registration.parameters;
    for (const ParameterSetting& setting : Settings(ink.values, module)) {
        const auto found = std::ranges::find(parameters, setting.name, &Parameter::name);
        edit.values.push_back({static_cast<std::size_t>(found - parameters.begin()), setting.value});
    }
    return edit;
}

bool Player::EditInk(std::size_t container, const InkEdit& edit) {
    Container& edited = m_containers[container];
    const InstanceHistory& history = m_host.History(edited.id);
    InkEdits& edits = edited.edits;
    bool isDone = false;
    switch (edit.kind) {
        case InkEvent::Kind::Undo:
            for (std::size_t i = 0; i < edit.number && edits.Undo(history); ++i) isDone = true;
            break;
        case InkEvent::Kind::Redo:
            for (std::size_t i = 0; i < edit.number && edits.Redo(history); ++i) isDone = true;
            break;
        case InkEvent::Kind::Remove:
            isDone = edits.Remove(history, edit.number);
            break;
        case InkEvent::Kind::Move:
            isDone = edits.Move(history, edit.number, edit.right, edit.down);
            break;
        case InkEvent::Kind::Recolour:
            isDone = edits.Recolour(history, edit.number, edit.values);
            break;
    }
    if (isDone) m_host.Rebuild(edited.id, edits.Apply(history));
    return isDone;
}

}  // namespace kel
