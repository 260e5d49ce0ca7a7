#pragma once

#include <atomic>
#include <memory>
#include <thread>

#include "kel/control/control_address.h"
#include "kel/control/control_mailbox.h"
#include "kel/control/control_words.h"

struct lws_context;

namespace kel {

class ControlClients;

// The door for HTTP and WebSocket, both on one port, on a thread of its own. It takes lines, passes them to the mailbox
// and brings back the answers; a WebSocket gets every event too. docs/control.md says what clients see.
//
// Whoever has no token, comes from a web page of elsewhere, sends too much, asks too slowly or reads too slowly is
// refused with one line, and nobody else notices.
class ControlServer {
public:
    // The token is there. Throws Error when the door cannot be opened. Borrows the mailbox for its life.
    ControlServer(ControlAddress address, ControlMailbox& mailbox);
    ~ControlServer();
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;
    ControlServer(ControlServer&&) = delete;
    ControlServer& operator=(ControlServer&&) = delete;

    // With the port that it was given.
    [[nodiscard]] const ControlAddress& Address() const { return m_address; }

    static constexpr int mostClients = 64;
    static constexpr int mostConnections = 128;  // with those that are still to say what they are
    static constexpr std::size_t longestMessage = longestControlLine;
    static constexpr std::size_t mostLines = 256;  // in a message, and before the next one is read

private:
    ControlAddress m_address;
    ControlMailbox& m_mailbox;
    std::unique_ptr<ControlClients> m_clients;
    lws_context* m_context = nullptr;
    std::atomic<bool> m_isOver = false;
    std::thread m_thread;
};

}  // namespace kel
