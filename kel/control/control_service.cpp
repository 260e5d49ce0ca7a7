#include "kel/control/control_service.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "cli/error.h"
#include "kel/control/control_json.h"
#include "kel/control/osc_feedback.h"
#include "kel/control/osc_server.h"
#if KEL_WITH_SERVER
#include "kel/control/control_server.h"
#endif

namespace kel {

namespace {

// The one kept for that port, or a new one.
std::string TokenFor(int port) {
    const std::string kept = port == 0 ? std::string() : KeptToken(port);
    return kept.empty() ? NewControlToken() : kept;
}

// Those who take no answers are refused where somebody may read it.
std::string RefusedEvent(const std::string& line, const ControlAnswer& answer) {
    nlohmann::ordered_json event = {{"event", "refused"}, {"command", line}};
    event["error"] = nlohmann::json::parse(answer.json)["error"];
    return ControlJsonText(event);
}

}  // namespace

#if !KEL_WITH_SERVER
class ControlServer {
public:
    ControlServer(const ControlAddress& address, const ControlMailbox&) : m_address(address) {
        throw cli::Error("this kel was built without libwebsockets, so it has no --control");
    }
    [[nodiscard]] const ControlAddress& Address() const { return m_address; }

private:
    ControlAddress m_address;
};
#endif

ControlService::ControlService(const ControlOptions& options) {
    std::string token;
    if (options.door) {
        ControlAddress door = *options.door;
        m_keepsToken = door.port != 0;
        token = door.token = TokenFor(door.port);
        m_server = std::make_unique<ControlServer>(std::move(door), m_mailbox);
    }
    if (options.osc) {
        ControlAddress osc = *options.osc;
        osc.token = token.empty() ? TokenFor(osc.port) : token;
        m_osc = std::make_unique<OscServer>(std::move(osc), m_mailbox);
    }
    if (options.oscFeedback) m_oscFeedback = std::make_unique<OscFeedback>(*options.oscFeedback);
    if (m_server) KeepToken(Door().port, token);
    if (m_osc && !m_server && !IsLoopback(Osc().host)) KeepToken(Osc().port, Osc().token);
}

ControlService::~ControlService() {
    if (m_server && !m_keepsToken) ForgetToken(Door().port);
}

const ControlAddress& ControlService::Door() const { return m_server->Address(); }

const ControlAddress& ControlService::Osc() const { return m_osc->Address(); }

bool ControlService::RunCommands(ControlTarget& target) {
    const std::vector<ControlRequest> requests = m_mailbox.TakeRequests(mostInAField);
    for (const ControlRequest& request : requests) {
        ControlAnswer answer = RunControlLine(target, request.line, request.numbers);
        if (request.client == nobody && !answer.isDone) TellRefused(request.line, answer);
        m_mailbox.Answer(request.client, std::move(answer.json));
    }
    return !requests.empty();
}

void ControlService::TellRefused(const std::string& line, const ControlAnswer& answer) {
    if (!m_oscFeedback && !m_mailbox.HasListeners()) return;
    const std::string event = RefusedEvent(line, answer);
    if (m_oscFeedback) m_oscFeedback->Tell(event);
    m_mailbox.TellAll({event});
}

// Who has just come gets all of it, the others what has changed.
void ControlService::TellState(Workspace& workspace) {
    if (m_oscFeedback) m_oscFeedback->TellState(workspace);
    const std::vector<ControlClientId> newListeners = m_mailbox.TakeNewListeners();
    if (!m_mailbox.HasListeners()) {
        m_state = {};
        m_isFollowed = false;
        return;
    }
    m_mailbox.TellAll(m_state.TakeEvents(workspace));
    if (!std::exchange(m_isFollowed, true)) return;  // all of them have just come
    for (const ControlClientId listener : newListeners) m_mailbox.Tell(listener, ControlState().TakeEvents(workspace));
}

void ControlService::TellNews(const std::string& line) {
    if (!m_oscFeedback && !m_mailbox.HasListeners()) return;
    const std::string event = ControlJsonText({{"event", "news"}, {"text", line}});
    if (m_oscFeedback) m_oscFeedback->Tell(event);
    m_mailbox.TellAll({event});
}

}  // namespace kel
