#include "kel/control/control_server.h"

#include <exception>
#include <utility>

#include "cli/error.h"
#include "kel/control/control_clients.h"

namespace kel {
namespace {

constexpr unsigned secondsToSpeak = 3;  // for a request that has begun

int TakeCall(lws* wsi, lws_callback_reasons reason, void* user, void* in, std::size_t length) noexcept {
    auto* const clients = static_cast<ControlClients*>(lws_context_user(lws_get_context(wsi)));
    try {
        return clients->Take(wsi, reason, static_cast<void**>(user), in, length);
    } catch (const std::exception&) {  // no memory: this client is given up
        return -1;
    }
}

const lws_protocols protocols[] = {
    {"chalkpane", TakeCall, sizeof(void*), 4096, 0, nullptr, 0},
    {nullptr, nullptr, 0, 0, 0, nullptr, 0},
};

// Who says nothing for so long is asked whether it is there, and given up without an answer.
const lws_retry_bo_t livenessCheck = {nullptr, 0, 0, 20, 30, 0};

}  // namespace

ControlServer::ControlServer(ControlAddress address, ControlMailbox& mailbox)
    : m_address(std::move(address)),
      m_mailbox(mailbox),
      m_clients(std::make_unique<ControlClients>(m_address, mailbox)) {
    lws_set_log_level(0, nullptr);  // what is wrong is told in this program's own lines
    lws_context_creation_info info{};
    info.port = m_address.port;
    info.iface = m_address.host.c_str();
    info.protocols = protocols;
    info.user = m_clients.get();
    info.gid = -1;
    info.uid = -1;
    info.options = LWS_SERVER_OPTION_FAIL_UPON_UNABLE_TO_BIND | LWS_SERVER_OPTION_DISABLE_IPV6;
    info.timeout_secs = secondsToSpeak;
    info.timeout_secs_ah_idle = secondsToSpeak;
    info.keepalive_timeout = secondsToSpeak;
    info.retry_and_idle_policy = &livenessCheck;
    info.fd_limit_per_thread = 2 * mostConnections;
    info.server_string = "kel";
    info.vhost_name = "kel";
    m_context = lws_create_context(&info);
    lws_vhost* const door = m_context == nullptr ? nullptr : lws_get_vhost_by_name(m_context, info.vhost_name);
    if (door == nullptr) {
        if (m_context != nullptr) lws_context_destroy(m_context);
        throw cli::Error(m_address.host + ":" + std::to_string(m_address.port) + ": the port cannot be opened");
    }
    m_address.port = lws_get_vhost_listen_port(door);
    m_mailbox.WakeBy([this] { lws_cancel_service(m_context); });
    m_thread = std::thread([this] {
        while (!m_isOver) (void)lws_service(m_context, 0);
    });
}

ControlServer::~ControlServer() {
    m_mailbox.WakeBy({});
    m_isOver = true;
    lws_cancel_service(m_context);
    m_thread.join();
    lws_context_destroy(m_context);
}

}  // namespace kel
