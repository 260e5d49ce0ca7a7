#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <thread>

#include "kel/control/control_address.h"
#include "kel/control/control_mailbox.h"

namespace kel {

// The door for Open Sound Control over UDP, on a thread of its own. It takes no answers. From other machines a
// message's first argument is the token. What is no message is dropped.
class OscServer {
public:
    static constexpr std::size_t mostWaiting = 4096;  // commands; what comes then is dropped

    // Throws Error when the door cannot be opened. Borrows the mailbox for its life.
    OscServer(ControlAddress address, ControlMailbox& mailbox);
    ~OscServer();
    OscServer(const OscServer&) = delete;
    OscServer& operator=(const OscServer&) = delete;
    OscServer(OscServer&&) = delete;
    OscServer& operator=(OscServer&&) = delete;

    // With the port that it was given.
    [[nodiscard]] const ControlAddress& Address() const { return m_address; }

private:
    void Listen();
    void Take(std::span<const std::byte> packet);

    ControlAddress m_address;
    ControlMailbox& m_mailbox;
    int m_socket = -1;
    int m_end = -1;  // becomes readable when it is over
    std::thread m_thread;
};

}  // namespace kel
