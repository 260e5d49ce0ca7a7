#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "kel/control/control_runner.h"

namespace kel {

// Between the doors, each on a thread of its own, and the workspace's thread. Neither side ever waits for the other.

using ControlClientId = std::uint64_t;
constexpr ControlClientId nobody = 0;  // who sends through a door that takes no answers

struct ControlRequest {
    ControlClientId client = nobody;
    std::string line;
    ControlNumbers numbers = ControlNumbers::Exact;
};

// A line of JSON for one client, or for all that listen.
struct ControlLetter {
    ControlClientId client = nobody;
    bool isForAll = false;
    bool isEvent = false;  // and not the answer to a request
    std::shared_ptr<const std::string> text;
};

class ControlMailbox {
public:
    // The doors, which see to it that nobody has much waiting.
    void Put(ControlRequest request);
    [[nodiscard]] std::size_t Waiting() const;
    // Somebody listens from now on, or no longer.
    void AddListener(ControlClientId client);
    void RemoveListener(ControlClientId client);
    [[nodiscard]] std::vector<ControlLetter> TakeLetters();
    // Called whenever a letter has come, on the workspace's thread; empty: nobody is.
    void WakeBy(std::function<void()> wake);

    // The workspace.
    [[nodiscard]] std::vector<ControlRequest> TakeRequests(std::size_t most);
    // Who has begun to listen since the last call, and listens still.
    [[nodiscard]] std::vector<ControlClientId> TakeNewListeners();
    [[nodiscard]] bool HasListeners() const;
    void Answer(ControlClientId client, std::string text);
    void Tell(ControlClientId listener, const std::vector<std::string>& events);
    void TellAll(const std::vector<std::string>& events);

private:
    void Send(ControlLetter letter, const std::vector<std::string>& texts);

    mutable std::mutex m_mutex;  // guards all of it
    std::deque<ControlRequest> m_requests;
    std::vector<ControlLetter> m_letters;
    std::vector<ControlClientId> m_listeners;
    std::vector<ControlClientId> m_newListeners;
    std::function<void()> m_wake;
};

}  // namespace kel
