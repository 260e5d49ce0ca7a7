#include "apps/kel/commands/play_journal.h"

#include <utility>

#include "cli/error.h"

namespace kel {
namespace {

ContainerInk* FirstTelestrator(const Player& player) {
    for (const Player::Container& container : player.Containers())
        if (container.ink && container.ink->CanKeep()) return container.ink.get();
    return nullptr;
}

}  // namespace

void PlayJournal::Check(const std::string& file, const std::string& session, const Player& player) {
    if (file.empty()) return;
    if (FirstTelestrator(player) == nullptr)
        throw cli::Error(session, "/containers", "no container has a telestrator, so there is no journal");
    CheckJournalPlace(file);
}

PlayJournal::PlayJournal(std::string file, const Player& player) : m_file(std::move(file)) {
    if (m_file.empty()) return;
    m_ink = FirstTelestrator(player);
    m_ink->WriteJournal(m_file);
}

void PlayJournal::Follow() {
    if (m_ink != nullptr) m_ink->Follow();
}

void PlayJournal::Finish() {
    if (m_ink == nullptr) return;
    m_ink->FinishJournal();
    if (const std::string trouble = m_ink->JournalTrouble(); !trouble.empty()) throw cli::Error(trouble);
}

}  // namespace kel
