#include "kel/control/osc_feedback.h"

#include <sys/socket.h>
#include <unistd.h>

#include <nlohmann/json.hpp>
#include <utility>

#include "cli/error.h"
#include "kel/control/osc_place.h"

namespace kel {
namespace {

using nlohmann::json;

// Lamps light by a number, so true is 1.
OscArgument FeedbackArgument(const json& value) {
    if (value.is_boolean()) return value.get<bool>() ? 1.0 : 0.0;
    if (value.is_number()) return value.get<double>();
    return value.is_string() ? value.get<std::string>() : value.dump();
}

void AddParts(const std::string& address, const json& value, std::vector<OscMessage>& messages) {
    if (!value.is_object()) {
        messages.push_back({address, {FeedbackArgument(value)}});
        return;
    }
    for (const auto& [name, part] : value.items()) {
        std::string inner = address;
        inner += '/';
        inner += name;
        AddParts(inner, part, messages);
    }
}

}  // namespace

std::vector<OscMessage> OscMessagesOf(const std::string& event) {
    json parts = json::parse(event);
    const auto kind = parts["event"].get<std::string>();
    if (kind == "parameter") return {{"/set/" + parts["name"].get<std::string>(), {FeedbackArgument(parts["value"])}}};
    parts.erase("event");
    std::vector<OscMessage> messages;
    // What is called as its event, as fading is, stands for all of it.
    AddParts("/" + kind, parts.contains(kind) ? parts[kind] : parts, messages);
    return messages;
}

OscFeedback::OscFeedback(const ControlAddress& to)
    : m_place(OscPlaceOf(to)), m_socket(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
    if (m_socket < 0) throw cli::Error("the system has no more handles for OSC");
}

OscFeedback::~OscFeedback() { close(m_socket); }

// What does not get through now is lost, as everything may be over UDP.
void OscFeedback::Tell(const std::string& event) const {
    for (const OscMessage& message : OscMessagesOf(event)) {
        const std::string packet = OscPacketOf(message);
        (void)sendto(m_socket, packet.data(), packet.size(), MSG_NOSIGNAL, reinterpret_cast<const sockaddr*>(&m_place),
                     sizeof m_place);
    }
}

bool OscFeedback::IsOtherContainer(const std::string& event) {
    const json parts = json::parse(event);
    if (parts["event"] != "container") return false;
    const auto chosen = parts["name"].get<std::string>();
    return std::exchange(m_container, chosen) != chosen;
}

void OscFeedback::TellState(Workspace& workspace) {
    std::vector<std::string> events = m_state.TakeEvents(workspace);
    bool isOther = false;
    for (const std::string& event : events) isOther = IsOtherContainer(event) || isOther;
    if (isOther) {
        m_state = {};
        events = m_state.TakeEvents(workspace);
    }
    for (const std::string& event : events) {
        const json parts = json::parse(event);
        if (parts["event"] != "parameter" || parts["container"] == m_container) Tell(event);
    }
}

}  // namespace kel
