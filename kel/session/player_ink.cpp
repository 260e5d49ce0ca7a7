#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "cli/error.h"
#include "kel/session/player.h"
#include "telestrator/journal/journal_file.h"

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

const char* WordOf(const InkEvent& ink) {
    switch (ink.kind) {
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
        case InkEvent::Kind::Keep:
            return "keep";
        case InkEvent::Kind::Recall:
            return ink.strokes.empty() ? "recall" : "recallStrokes";
        case InkEvent::Kind::Fade:
            return "fade";
    }
    return "";
}

bool IsOfStroke(InkEvent::Kind kind) {
    return kind == InkEvent::Kind::Remove || kind == InkEvent::Kind::Move || kind == InkEvent::Kind::Recolour;
}

bool IsOfDrawing(InkEvent::Kind kind) {
    return kind == InkEvent::Kind::Keep || kind == InkEvent::Kind::Recall || kind == InkEvent::Kind::Fade;
}

chalkpane::FadeSettings FadeOf(const InkEvent& ink, double fieldsPerSecond) {
    chalkpane::FadeSettings fade;
    if (ink.fadeAfter >= 0) fade.waitFields = static_cast<std::int32_t>(std::lround(ink.fadeAfter * fieldsPerSecond));
    fade.overFields = static_cast<std::int32_t>(ink.fadeOver);
    return fade;
}

}  // namespace

void Player::CheckStroke(const SessionEvent& event, const InkEvent& ink) const {
    if (IsOfDrawing(ink.kind) && !m_containers[ink.container].ink->CanKeep())
        throw cli::Error(m_session.file.string(), event.place + "/" + WordOf(ink),
                         "the container's plug-in is no telestrator");
    if (!IsOfStroke(ink.kind)) return;
    if (ink.number <= StrokesBefore(m_session, event.field)) return;
    throw cli::Error(
        m_session.file.string(), event.place + "/" + WordOf(ink),
        "there is no stroke " + std::to_string(ink.number) + " before field " + std::to_string(event.field));
}

InkEdit Player::PrepareInk(const SessionEvent& event, const InkEvent& ink) {
    CheckStroke(event, ink);
    InkEdit edit;
    edit.kind = ink.kind;
    edit.number = static_cast<std::size_t>(ink.number);
    edit.right = static_cast<std::int32_t>(std::lround(ink.by.x));
    edit.down = static_cast<std::int32_t>(std::lround(ink.by.y));
    edit.recall = ink.inPlace ? chalkpane::InkDrawing::Recall::InPlace : chalkpane::InkDrawing::Recall::Over;
    edit.fade = FadeOf(ink, m_session.fieldsPerSecond);
    if (!ink.strokes.empty()) {
        edit.strokes = ReadStrokes(event, ink);
        edit.number = 0;
    }
    const Module& module = *m_containers[ink.container].module;
    const auto& parameters = module.registration.parameters;
    for (const ParameterSetting& setting : Settings(ink.values, module)) {
        const auto found = std::ranges::find(parameters, setting.name, &Parameter::name);
        edit.values.push_back({static_cast<std::size_t>(found - parameters.begin()), setting.value});
    }
    return edit;
}

std::vector<chalkpane::SharedStroke> Player::ReadStrokes(const SessionEvent& event, const InkEvent& ink) const {
    chalkpane::KeptDrawing kept = chalkpane::ParseDrawing(std::string(chalkpane::journalHeader) + '\n' + ink.strokes);
    if (!kept.error.empty()) throw cli::Error(m_session.file.string(), event.place + "/" + WordOf(ink), kept.error);
    return std::move(kept.strokes);
}

bool Player::EditInk(std::size_t container, const InkEdit& edit) {
    ContainerInk& ink = *m_containers[container].ink;
    if (edit.kind == InkEditKind::Keep) {
        m_slots[edit.number - 1] = ink.Strokes();
        return true;
    }
    if (edit.kind != InkEditKind::Recall || edit.number == 0) return ink.Edit(edit);
    InkEdit recalled = edit;
    recalled.strokes = m_slots[edit.number - 1];
    return !recalled.strokes.empty() && ink.Edit(recalled);
}

void Player::PushButton(std::size_t container, const std::string& name) {
    m_containers[container].ink->BeforeButton(name);
    m_host.PushButton(m_containers[container].id, name);
}

}  // namespace kel
