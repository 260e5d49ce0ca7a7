#pragma once

#include <string>

#include "kel/session/player.h"

namespace kel {

// The journal of what a session draws on its first telestrator, record by record, so that what stops the play leaves
// all that was drawn before. Without a file nothing is done. What is wrong is thrown as Error.
class PlayJournal {
public:
    // Refuses a session without a telestrator, and a file that is there and is no journal.
    static void Check(const std::string& file, const std::string& session, const Player& player);

    // player: borrowed; nothing has been played.
    PlayJournal(std::string file, const Player& player);
    // After each field.
    void Follow();
    void Finish();

private:
    std::string m_file;
    ContainerInk* m_ink = nullptr;  // null: no journal
};

}  // namespace kel
