#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <utility>

#include "cli/error.h"
#include "kel/workspace/workspace.h"

// The operator's edits of what was drawn.

namespace kel {

ContainerInk* Workspace::Ink() const {
    return Chosen() == nullptr ? nullptr : m_player->Containers()[Chosen()->container].ink.get();
}

void Workspace::Edit(const InkEdit& edit) {
    if (!IsPlayingSession() && Chosen() != nullptr) LastActs().edits.push_back({m_chosen, edit});
}

void Workspace::Edit(InkEditKind kind) {
    InkEdit edit;
    edit.kind = kind;
    Edit(edit);
}

void Workspace::Keep(int slot) {
    ContainerInk* const ink = IsPlayingSession() ? nullptr : Ink();
    if (ink == nullptr || !ink->CanKeep()) return;
    try {
        m_slots.Keep(slot, ink->Strokes());
        m_news.push_back("The drawing is kept in slot " + std::to_string(slot));
    } catch (const cli::Error& error) {
        m_news.emplace_back(error.what());
    }
}

void Workspace::Recall(int slot, chalkpane::InkDrawing::Recall recall) {
    if (IsPlayingSession() || Ink() == nullptr || !Ink()->CanKeep()) return;
    InkEdit edit;
    edit.kind = InkEditKind::Recall;
    edit.number = 0;
    edit.recall = recall;
    try {
        edit.strokes = m_slots.Read(slot);
        Edit(edit);
    } catch (const cli::Error& error) {
        m_news.emplace_back(error.what());
    }
}

void Workspace::SetFading(const Fading& fading) {
    m_fading = fading;
    InkEdit edit;
    edit.kind = InkEditKind::Fade;
    const auto fields = [&](double seconds) {
        return static_cast<std::int32_t>(std::lround(seconds * FieldsPerSecond()));
    };
    if (fading.isOn) edit.fade.waitFields = fields(fading.after);
    edit.fade.overFields = std::max(fields(fading.over), 1);
    if (IsPlayingSession()) return;
    for (std::size_t i = 0; i < m_plugIns.size(); ++i)
        if (m_player->Containers()[m_plugIns[i].container].ink->CanKeep()) LastActs().edits.push_back({i, edit});
}

// Before anything else of the field, as a session that has them first plays them.
void Workspace::DeliverEdits(const std::vector<PendingEdit>& edits) {
    for (const PendingEdit& pending : edits) {
        const PlugIn& plugIn = m_plugIns[pending.plugIn];
        if (m_player->EditInk(plugIn.container, pending.edit) && m_recording)
            m_recording->AddInk(NextField(), plugIn.container, pending.edit, *plugIn.registration, FieldsPerSecond());
    }
}

void Workspace::FollowInk() {
    for (const PlugIn& plugIn : m_plugIns) {
        ContainerInk& ink = *m_player->Containers()[plugIn.container].ink;
        ink.Keep();
        ink.Follow();
        if (std::string trouble = ink.JournalTrouble(); !trouble.empty() && trouble != m_toldJournalTrouble) {
            m_news.push_back(trouble);
            m_toldJournalTrouble = std::move(trouble);
        }
    }
}

// Beside the recording "x.json": "x.journal", and "x-2.journal" for the second telestrator.
std::vector<Workspace::Journal> Workspace::Journals(const std::filesystem::path& recording) const {
    std::vector<Journal> journals;
    for (const PlugIn& plugIn : m_plugIns) {
        ContainerInk* const ink = m_player->Containers()[plugIn.container].ink.get();
        if (!ink->CanKeep()) continue;
        const std::size_t number = journals.size() + 1;
        const std::string suffix = number == 1 ? std::string() : "-" + std::to_string(number);
        journals.push_back({ink, recording.parent_path() / (recording.stem().string() + suffix + ".journal")});
    }
    return journals;
}

}  // namespace kel
