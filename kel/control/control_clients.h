#pragma once

#include <libwebsockets.h>

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "kel/control/control_address.h"
#include "kel/control/control_mailbox.h"

namespace kel {

// Those who are connected to the server, and what the library calls about them. Thread: the server's.
class ControlClients {
public:
    ControlClients(const ControlAddress& address, ControlMailbox& mailbox) : m_address(address), m_mailbox(mailbox) {}

    // The library's one callback. Not 0: the connection ends, or was answered.
    int Take(lws* wsi, lws_callback_reasons reason, void** slot, void* in, std::size_t length);

private:
    using Text = std::shared_ptr<const std::string>;
    struct Client {
        ControlClientId id = nobody;
        lws* wsi = nullptr;
        bool isSocket = false;       // WebSocket; else HTTP
        std::string message;         // as far as it has come
        std::size_t linesAsked = 0;  // not answered yet
        std::size_t bytesOut = 0;
        std::deque<Text> out;
        bool hasRefusal = false;  // HTTP: one of its lines was refused
    };

    [[nodiscard]] bool IsTokenRight(lws* wsi) const;
    int AskToEnter(lws* wsi) const;
    int RefuseNewcomer(void* in) const;
    int ConfirmSocket(lws* wsi) const;
    int TakeHttp(lws* wsi, void** slot);
    int TakePart(Client& client, const char* bytes, std::size_t length);
    int TakeLines(Client& client, std::string_view text);
    static int RefuseMessage(const Client& client, std::string reason);
    int WriteSocket(Client& client);
    int WriteHttp(Client& client, void** slot);
    void Deliver();
    void Answer(Client& client, const Text& text);
    void Give(Client& client, const Text& text);
    Client& Add(lws* wsi, void** slot, bool isSocket);
    void Remove(void** slot);

    const ControlAddress& m_address;
    ControlMailbox& m_mailbox;
    std::map<ControlClientId, std::unique_ptr<Client>> m_clients;
    ControlClientId m_lastId = nobody;
    std::set<lws*> m_connections;  // with those that are still to say what they are
};

}  // namespace kel
