#include "kel/control/control_clients.h"

#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <utility>

#include "kel/control/control_server.h"

namespace kel {
namespace {

constexpr std::size_t mostBytesOut = std::size_t{8} << 20U;  // that a client has still to read
constexpr int mostSecondsToAnswer = 30;

// The value of a header, empty when there is none or it is too long for one of ours.
std::string Header(lws* wsi, lws_token_indexes token) {
    std::array<char, 512> value{};
    const int length = lws_hdr_copy(wsi, value.data(), static_cast<int>(value.size()), token);
    return length > 0 ? std::string(value.data(), static_cast<std::size_t>(length)) : std::string();
}

// True: it has been written, as far as one packet goes.
bool WriteResponse(lws* wsi, unsigned status, const std::string& body) {
    std::vector<unsigned char> bytes(LWS_PRE + 1024 + body.size());
    unsigned char* const start = bytes.data() + LWS_PRE;
    unsigned char* at = start;
    unsigned char* const end = start + 1024;
    if (lws_add_http_common_headers(wsi, status, "application/json", body.size(), &at, end) != 0) return false;
    if (lws_finalize_write_http_header(wsi, start, &at, end) != 0) return false;
    std::memcpy(start, body.data(), body.size());
    return lws_write(wsi, start, body.size(), LWS_WRITE_HTTP_FINAL) >= 0;
}

// What the library is to be told then: the connection ends.
int Refuse(lws* wsi, unsigned status, std::string_view reason) {
    (void)WriteResponse(wsi, status, RefusedAnswer(reason).json + '\n');
    return -1;
}

std::string TooLong() {
    return "the message is longer than " + std::to_string(ControlServer::longestMessage) + " bytes";
}

bool IsRefusal(const std::string& answer) { return answer.starts_with("{\"ok\":false"); }

constexpr const char* tooMany = "too many clients are connected already";

}  // namespace

int ControlClients::Take(lws* wsi, lws_callback_reasons reason, void** slot, void* in, std::size_t length) {
    Client* const client = slot == nullptr ? nullptr : static_cast<Client*>(*slot);
    switch (reason) {
        case LWS_CALLBACK_FILTER_NETWORK_CONNECTION:
            return RefuseNewcomer(in);
        case LWS_CALLBACK_SERVER_NEW_CLIENT_INSTANTIATED:
            m_connections.insert(wsi);
            return 0;
        case LWS_CALLBACK_WSI_DESTROY:
            m_connections.erase(wsi);
            return 0;
        case LWS_CALLBACK_HTTP_CONFIRM_UPGRADE:
            return ConfirmSocket(wsi);
        case LWS_CALLBACK_ESTABLISHED:
            if (slot == nullptr) return -1;
            m_mailbox.AddListener(Add(wsi, slot, true).id);
            return 0;
        case LWS_CALLBACK_HTTP:
            return slot == nullptr ? -1 : TakeHttp(wsi, slot);
        case LWS_CALLBACK_RECEIVE:
        case LWS_CALLBACK_HTTP_BODY:
            return client == nullptr ? -1 : TakePart(*client, static_cast<const char*>(in), length);
        case LWS_CALLBACK_HTTP_BODY_COMPLETION:
            if (client == nullptr) return -1;
            return TakeLines(*client, client->message);
        case LWS_CALLBACK_SERVER_WRITEABLE:
            return client == nullptr ? 0 : WriteSocket(*client);
        case LWS_CALLBACK_HTTP_WRITEABLE:
            return client == nullptr ? 0 : WriteHttp(*client, slot);
        case LWS_CALLBACK_EVENT_WAIT_CANCELLED:
            Deliver();
            return 0;
        case LWS_CALLBACK_CLOSED:
        case LWS_CALLBACK_CLOSED_HTTP:
        case LWS_CALLBACK_HTTP_DROP_PROTOCOL:
            if (client != nullptr) Remove(slot);
            return 0;
        default:
            return 0;
    }
}

bool ControlClients::IsTokenRight(lws* wsi) const {
    constexpr std::string_view scheme = "Bearer ";
    std::array<char, 256> argument{};
    const char* given = lws_get_urlarg_by_name(wsi, "token=", argument.data(), static_cast<int>(argument.size()) - 1);
    if (given != nullptr && SameToken(given, m_address.token)) return true;
    const std::string header = Header(wsi, WSI_TOKEN_HTTP_AUTHORIZATION);
    return header.starts_with(scheme) && SameToken(header.substr(scheme.size()), m_address.token);
}

// 0: it may go on. What a browser says of the page that asks is believed, since pages cannot change it: no page of
// elsewhere gets in, even with the token.
int ControlClients::AskToEnter(lws* wsi) const {
    if (lws_hdr_total_length(wsi, WSI_TOKEN_ORIGIN) > 0 &&
        Header(wsi, WSI_TOKEN_ORIGIN) != "http://" + Header(wsi, WSI_TOKEN_HOST))
        return Refuse(wsi, HTTP_STATUS_FORBIDDEN, "web pages of elsewhere are not let in");
    if (!IsTokenRight(wsi))
        return Refuse(wsi, HTTP_STATUS_UNAUTHORIZED, "the token is wrong or missing; the window prints it");
    return 0;
}

// Before anything is known of who it is, so that the answer goes out as it is.
int ControlClients::RefuseNewcomer(void* in) const {
    if (m_connections.size() < ControlServer::mostConnections) return 0;
    const std::string body = RefusedAnswer(tooMany).json + '\n';
    const std::string answer =
        "HTTP/1.1 503 Service Unavailable\r\nConnection: close\r\nContent-Type: application/json\r\nContent-Length: " +
        std::to_string(body.size()) + "\r\n\r\n" + body;
    const auto handle = static_cast<int>(reinterpret_cast<std::intptr_t>(in));
    (void)send(handle, answer.data(), answer.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    return 1;
}

int ControlClients::ConfirmSocket(lws* wsi) const {
    constexpr int answered = 1;  // at -1 the library ends the connection before the answer is out
    if (AskToEnter(wsi) != 0) return answered;
    const auto sockets = std::ranges::count_if(m_clients, [](const auto& each) { return each.second->isSocket; });
    if (sockets < ControlServer::mostClients) return 0;
    (void)Refuse(wsi, HTTP_STATUS_SERVICE_UNAVAILABLE, tooMany);
    return answered;
}

int ControlClients::TakeHttp(lws* wsi, void** slot) {
    if (const int refused = AskToEnter(wsi); refused != 0) return refused;
    if (lws_hdr_total_length(wsi, WSI_TOKEN_GET_URI) > 0) {
        return TakeLines(Add(wsi, slot, false), "list");
    }
    if (lws_hdr_total_length(wsi, WSI_TOKEN_POST_URI) <= 0)
        return Refuse(wsi, HTTP_STATUS_METHOD_NOT_ALLOWED, "GET lists all there is, POST takes commands");
    const std::string said = Header(wsi, WSI_TOKEN_HTTP_CONTENT_LENGTH);
    std::size_t bytes = 0;
    const auto [end, error] = std::from_chars(said.data(), said.data() + said.size(), bytes);
    if (said.empty() || (error != std::errc() && error != std::errc::result_out_of_range))
        return Refuse(wsi, HTTP_STATUS_LENGTH_REQUIRED, "the request does not say its length");
    if (error == std::errc::result_out_of_range || bytes > ControlServer::longestMessage)
        return Refuse(wsi, HTTP_STATUS_REQ_ENTITY_TOO_LARGE, TooLong());
    if (bytes == 0) return Refuse(wsi, HTTP_STATUS_BAD_REQUEST, "the message is empty");
    (void)Add(wsi, slot, false);
    return 0;
}

// A part of a message.
int ControlClients::TakePart(Client& client, const char* bytes, std::size_t length) {
    if (client.message.size() + length > ControlServer::longestMessage) return RefuseMessage(client, TooLong());
    client.message.append(bytes, length);
    if (!client.isSocket) return 0;
    if (lws_is_final_fragment(client.wsi) == 0 || lws_remaining_packet_payload(client.wsi) != 0) return 0;
    if (const int refused = TakeLines(client, std::exchange(client.message, {})); refused != 0) return refused;
    if (client.linesAsked > ControlServer::mostLines) lws_rx_flow_control(client.wsi, 0);
    return 0;
}

int ControlClients::RefuseMessage(const Client& client, std::string reason) {
    if (!client.isSocket) return Refuse(client.wsi, HTTP_STATUS_REQ_ENTITY_TOO_LARGE, reason);
    lws_close_reason(client.wsi, LWS_CLOSE_STATUS_MESSAGE_TOO_LARGE, reinterpret_cast<unsigned char*>(reason.data()),
                     reason.size());
    return -1;
}

int ControlClients::TakeLines(Client& client, std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        if (const std::string_view line = text.substr(0, end); !line.empty() && line != "\r") lines.emplace_back(line);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    if (lines.size() > ControlServer::mostLines)
        return RefuseMessage(client,
                             "the message has more than " + std::to_string(ControlServer::mostLines) + " commands");
    if (lines.empty()) lines.emplace_back();  // is refused as any empty one
    client.linesAsked += lines.size();
    for (std::string& line : lines) m_mailbox.Put({client.id, std::move(line)});
    if (!client.isSocket) lws_set_timeout(client.wsi, PENDING_TIMEOUT_USER_REASON_BASE, mostSecondsToAnswer);
    return 0;
}

void ControlClients::Deliver() {
    for (const ControlLetter& letter : m_mailbox.TakeLetters()) {
        if (letter.isForAll) {
            for (const auto& [id, client] : m_clients)
                if (client->isSocket) Give(*client, letter.text);
        } else if (const auto found = m_clients.find(letter.client); found != m_clients.end()) {
            if (letter.isEvent)
                Give(*found->second, letter.text);
            else
                Answer(*found->second, letter.text);
        }
    }
}

void ControlClients::Answer(Client& client, const Text& text) {
    if (client.linesAsked > 0) --client.linesAsked;
    client.hasRefusal = client.hasRefusal || IsRefusal(*text);
    if (client.isSocket && client.linesAsked == ControlServer::mostLines / 2) lws_rx_flow_control(client.wsi, 1);
    Give(client, text);
}

void ControlClients::Give(Client& client, const Text& text) {
    client.out.push_back(text);
    client.bytesOut += text->size();
    if (client.bytesOut > mostBytesOut)  // it does not read what it asks for
        return lws_set_timeout(client.wsi, PENDING_TIMEOUT_USER_REASON_BASE, LWS_TO_KILL_ASYNC);
    if (client.isSocket || client.linesAsked == 0) lws_callback_on_writable(client.wsi);
}

int ControlClients::WriteSocket(Client& client) {
    if (client.out.empty()) return 0;
    const Text text = client.out.front();
    client.out.pop_front();
    client.bytesOut -= text->size();
    std::vector<unsigned char> bytes(LWS_PRE + text->size());
    std::memcpy(bytes.data() + LWS_PRE, text->data(), text->size());
    if (lws_write(client.wsi, bytes.data() + LWS_PRE, text->size(), LWS_WRITE_TEXT) < 0) return -1;
    if (!client.out.empty()) lws_callback_on_writable(client.wsi);
    return 0;
}

int ControlClients::WriteHttp(Client& client, void** slot) {
    if (client.linesAsked > 0 || client.out.empty()) return 0;
    std::string body;
    for (const Text& text : client.out) body += *text + '\n';
    lws* const wsi = client.wsi;
    const bool hasRefusal = client.hasRefusal;
    Remove(slot);
    if (!WriteResponse(wsi, hasRefusal ? HTTP_STATUS_BAD_REQUEST : HTTP_STATUS_OK, body)) return -1;
    return lws_http_transaction_completed(wsi) != 0 ? -1 : 0;
}

ControlClients::Client& ControlClients::Add(lws* wsi, void** slot, bool isSocket) {
    auto client = std::make_unique<Client>();
    client->id = ++m_lastId;
    client->wsi = wsi;
    client->isSocket = isSocket;
    *slot = client.get();
    return *m_clients.emplace(m_lastId, std::move(client)).first->second;
}

void ControlClients::Remove(void** slot) {
    const ControlClientId id = static_cast<Client*>(*slot)->id;
    *slot = nullptr;
    m_mailbox.RemoveListener(id);
    m_clients.erase(id);
}

}  // namespace kel
