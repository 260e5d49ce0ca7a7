#pragma once

#include <netinet/in.h>

#include <string>
#include <vector>

#include "kel/control/control_address.h"
#include "kel/control/control_state.h"
#include "kel/control/osc_message.h"

namespace kel {

// The messages that tell one event of ControlState. A parameter's is the command that would set it, so that a fader
// that sends it shows it too; of any other event each part is a message: "/film/frame 12".
[[nodiscard]] std::vector<OscMessage> OscMessagesOf(const std::string& event);

// Tells one place by Open Sound Control over UDP what changes, whether anybody listens there or not: all of the state
// at first, then each change. Parameters are those of the chosen plug-in; when another is chosen all of it comes again.
// Thread: the workspace's, which never waits.
class OscFeedback {
public:
    // Throws Error when there can be no such place.
    explicit OscFeedback(const ControlAddress& to);
    ~OscFeedback();
    OscFeedback(const OscFeedback&) = delete;
    OscFeedback& operator=(const OscFeedback&) = delete;
    OscFeedback(OscFeedback&&) = delete;
    OscFeedback& operator=(OscFeedback&&) = delete;

    void TellState(Workspace& workspace);
    // An event as docs/control.md lists them.
    void Tell(const std::string& event) const;

private:
    [[nodiscard]] bool IsOtherContainer(const std::string& event);

    sockaddr_in m_place;
    int m_socket;
    ControlState m_state;
    std::string m_container;  // the chosen one; empty: none was told yet
};

}  // namespace kel
