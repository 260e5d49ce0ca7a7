#include "kel/control/control_mailbox.h"

#include <algorithm>
#include <utility>

namespace kel {

void ControlMailbox::Put(ControlRequest request) {
    const std::lock_guard lock(m_mutex);
    m_requests.push_back(std::move(request));
}

std::size_t ControlMailbox::Waiting() const {
    const std::lock_guard lock(m_mutex);
    return m_requests.size();
}

void ControlMailbox::AddListener(ControlClientId client) {
    const std::lock_guard lock(m_mutex);
    m_listeners.push_back(client);
    m_newListeners.push_back(client);
}

void ControlMailbox::RemoveListener(ControlClientId client) {
    const std::lock_guard lock(m_mutex);
    std::erase(m_listeners, client);
    std::erase(m_newListeners, client);
}

std::vector<ControlLetter> ControlMailbox::TakeLetters() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_letters, {});
}

void ControlMailbox::WakeBy(std::function<void()> wake) {
    const std::lock_guard lock(m_mutex);
    m_wake = std::move(wake);
}

std::vector<ControlRequest> ControlMailbox::TakeRequests(std::size_t most) {
    const std::lock_guard lock(m_mutex);
    std::vector<ControlRequest> taken;
    while (!m_requests.empty() && taken.size() < most) {
        taken.push_back(std::move(m_requests.front()));
        m_requests.pop_front();
    }
    return taken;
}

std::vector<ControlClientId> ControlMailbox::TakeNewListeners() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_newListeners, {});
}

bool ControlMailbox::HasListeners() const {
    const std::lock_guard lock(m_mutex);
    return !m_listeners.empty();
}

void ControlMailbox::Answer(ControlClientId client, std::string text) {
    if (client != nobody) Send({client, false, false, nullptr}, {std::move(text)});
}

void ControlMailbox::Tell(ControlClientId listener, const std::vector<std::string>& events) {
    Send({listener, false, true, nullptr}, events);
}

void ControlMailbox::TellAll(const std::vector<std::string>& events) { Send({nobody, true, true, nullptr}, events); }

void ControlMailbox::Send(ControlLetter letter, const std::vector<std::string>& texts) {
    if (texts.empty()) return;
    const std::lock_guard lock(m_mutex);
    for (const std::string& text : texts) {
        letter.text = std::make_shared<const std::string>(text);
        m_letters.push_back(letter);
    }
    if (m_wake) m_wake();
}

}  // namespace kel
