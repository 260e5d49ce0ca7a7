#include "kel/control/control_service.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "cli/error.h"
#include "kel/control/control_json.h"
#include "kel/control/control_server.h"

namespace kel {

#if KEL_WITH_SERVER

ControlService::ControlService(const ControlOptions& options) {
    if (!options.door) return;
    ControlAddress door = *options.door;
    m_keepsToken = door.port != 0;
    if (door.token.empty() && m_keepsToken) door.token = KeptToken(door.port);
    if (door.token.empty()) door.token = NewControlToken();
    m_server = std::make_unique<ControlServer>(std::move(door), m_mailbox);
    KeepToken(Door().port, Door().token);
}

ControlService::~ControlService() {
    if (m_server && !m_keepsToken) ForgetToken(Door().port);
}

const ControlAddress& ControlService::Door() const { return m_server->Address(); }

#else

class ControlServer {};

ControlService::ControlService(const ControlOptions& options) {
    if (options.door) throw cli::Error("this kel was built without libwebsockets, so it has no --control");
}
ControlService::~ControlService() = default;

const ControlAddress& ControlService::Door() const {
    static const ControlAddress none;
    return none;
}

#endif

bool ControlService::RunCommands(ControlTarget& target) {
    const std::vector<ControlRequest> requests = m_mailbox.TakeRequests(mostInAField);
    for (const ControlRequest& request : requests)
        m_mailbox.Answer(request.client, RunControlLine(target, request.line, request.numbers).json);
    return !requests.empty();
}

// Who has just come gets all of it, the others what has changed.
void ControlService::TellState(Workspace& workspace) {
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
    if (m_mailbox.HasListeners()) m_mailbox.TellAll({ControlJsonText({{"event", "news"}, {"text", line}})});
}

}  // namespace kel
