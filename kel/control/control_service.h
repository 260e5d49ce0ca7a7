#pragma once

#include <memory>
#include <optional>
#include <string>

#include "kel/control/control_address.h"
#include "kel/control/control_mailbox.h"
#include "kel/control/control_state.h"

namespace kel {

class ControlServer;
class OscFeedback;
class OscServer;

struct ControlOptions {
    std::optional<ControlAddress> door = {};         // for HTTP and WebSocket; nothing: none
    std::optional<ControlAddress> osc = {};          // for Open Sound Control, likewise
    std::optional<ControlAddress> oscFeedback = {};  // who is told of changes by it; nothing: nobody
};

// All doors of a workspace, and what comes in through them. Thread: the workspace's; the doors have their own.
class ControlService {
public:
    // Throws Error when a door cannot be opened.
    explicit ControlService(const ControlOptions& options);
    ~ControlService();
    ControlService(const ControlService&) = delete;
    ControlService& operator=(const ControlService&) = delete;
    ControlService(ControlService&&) = delete;
    ControlService& operator=(ControlService&&) = delete;

    // Where they are, with their token; each only if it was asked for.
    [[nodiscard]] const ControlAddress& Door() const;
    [[nodiscard]] const ControlAddress& Osc() const;

    // Runs what has come in, to be called before each field; what is left waits for the next one. False: nothing had.
    bool RunCommands(ControlTarget& target);
    static constexpr std::size_t mostInAField = 64;
    // Tells what has changed, to be called after each field.
    void TellState(Workspace& workspace);
    // A line that the operator reads.
    void TellNews(const std::string& line);

private:
    void TellRefused(const std::string& line, const ControlAnswer& answer);

    ControlMailbox m_mailbox;
    ControlState m_state;
    bool m_isFollowed = false;  // somebody listened the last time
    bool m_keepsToken = false;
    std::unique_ptr<ControlServer> m_server;
    std::unique_ptr<OscServer> m_osc;
    std::unique_ptr<OscFeedback> m_oscFeedback;
};

}  // namespace kel
