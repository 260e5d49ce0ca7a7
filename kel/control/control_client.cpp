#include "kel/control/control_client.h"

#include <libwebsockets.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <deque>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/error.h"
#include "kel/control/control_words.h"

namespace kel {
namespace {

constexpr const char* clientProtocol = "client";
constexpr const char* inputProtocol = "input";

// Why nobody was let in, from what the window's door answered.
std::string RefusalOf(int status, std::string_view otherwise) {
    if (status == HTTP_STATUS_UNAUTHORIZED) return "the token is wrong or missing; the window prints its whole address";
    if (status == HTTP_STATUS_SERVICE_UNAVAILABLE) return "too many clients are connected already";
    return otherwise.empty() ? "no window answers there" : "no window answers there (" + std::string(otherwise) + ")";
}

// The conversation as the library calls it.
class Talk {
public:
    Talk(const ControlAddress& address, const ControlConversation& conversation)
        : m_address(address),
          m_conversation(conversation),
          m_commands(conversation.commands.begin(), conversation.commands.end()),
          m_isInputOver(conversation.input < 0) {}

    void Have();
    int Take(lws* wsi, lws_callback_reasons reason, const char* in, std::size_t length);

private:
    void Connect(lws_context* context);
    int Established(lws* wsi);
    int SendNext(lws* wsi);
    void TakePart(lws* wsi, const char* bytes, std::size_t length);
    int ReadInput();
    void GoOn();
    [[nodiscard]] bool IsAllAnswered() const { return m_isInputOver && m_commands.empty() && !m_isWaiting; }
    void Fail(const std::string& reason);

    const ControlAddress& m_address;
    const ControlConversation& m_conversation;
    std::deque<std::string> m_commands;
    std::string m_asked;    // what m_isWaiting is for
    std::string m_message;  // as far as it has come
    std::string m_line;     // of the input, likewise
    std::string m_failure;
    lws* m_window = nullptr;  // null: not connected
    bool m_isInputOver;
    bool m_isWaiting = false;
    bool m_isOver = false;
};

int TakeCall(lws* wsi, lws_callback_reasons reason, void*, void* in, std::size_t length) noexcept {
    auto* const talk = static_cast<Talk*>(lws_context_user(lws_get_context(wsi)));
    try {
        return talk->Take(wsi, reason, static_cast<const char*>(in), length);
    } catch (const std::exception&) {  // no memory
        return -1;
    }
}

const lws_protocols protocols[] = {
    {clientProtocol, TakeCall, 0, 4096, 0, nullptr, 0},
    {inputProtocol, TakeCall, 0, 0, 0, nullptr, 0},
    {nullptr, nullptr, 0, 0, 0, nullptr, 0},
};

void Talk::Have() {
    lws_set_log_level(0, nullptr);
    lws_context_creation_info info{};
    info.port = CONTEXT_PORT_NO_LISTEN;
    info.protocols = protocols;
    info.user = this;
    info.gid = -1;
    info.uid = -1;
    lws_context* const context = lws_create_context(&info);
    if (context == nullptr) throw cli::Error("this machine lets no program connect");
    Connect(context);
    while (!m_isOver && lws_service(context, 0) >= 0) continue;
    lws_context_destroy(context);
    if (!m_failure.empty()) throw cli::Error(m_address.host + ":" + std::to_string(m_address.port), {}, m_failure);
}

void Talk::Connect(lws_context* context) {
    const std::string path = "/?token=" + m_address.token;
    lws_client_connect_info info{};
    info.context = context;
    info.address = m_address.host.c_str();
    info.host = info.address;
    info.port = m_address.port;
    info.path = path.c_str();
    info.local_protocol_name = clientProtocol;
    if (lws_client_connect_via_info(&info) == nullptr) Fail(RefusalOf(0, {}));
}

int Talk::Take(lws* wsi, lws_callback_reasons reason, const char* in, std::size_t length) {
    switch (reason) {
        case LWS_CALLBACK_CLIENT_CONNECTION_ERROR:
            Fail(RefusalOf(static_cast<int>(lws_http_client_http_response(wsi)),
                           in == nullptr ? std::string_view() : std::string_view(in, length)));
            return 0;
        case LWS_CALLBACK_CLIENT_ESTABLISHED:
            return Established(wsi);
        case LWS_CALLBACK_CLIENT_WRITEABLE:
            return SendNext(wsi);
        case LWS_CALLBACK_CLIENT_RECEIVE:
            TakePart(wsi, in, length);
            return 0;
        case LWS_CALLBACK_WS_PEER_INITIATED_CLOSE:
            // Two bytes of number, then the reason.
            if (length > 2) Fail({in + 2, length - 2});
            return 0;
        case LWS_CALLBACK_CLIENT_CLOSED:
            m_window = nullptr;
            if (!m_isOver && !IsAllAnswered()) Fail("the window went away");
            m_isOver = true;
            return 0;
        case LWS_CALLBACK_RAW_RX_FILE:
            return ReadInput();
        default:
            return 0;
    }
}

int Talk::Established(lws* wsi) {
    m_window = wsi;
    if (m_conversation.input >= 0) {
        lws_sock_file_fd_type input{};
        input.filefd = dup(m_conversation.input);
        (void)lws_adopt_descriptor_vhost(lws_get_vhost(wsi), LWS_ADOPT_RAW_FILE_DESC, input, inputProtocol, nullptr);
    }
    GoOn();
    return 0;
}

void Talk::GoOn() {
    if (m_window != nullptr && !m_isWaiting && !m_commands.empty()) lws_callback_on_writable(m_window);
    if (IsAllAnswered() && !m_conversation.staysForEvents) m_isOver = true;
}

int Talk::SendNext(lws* wsi) {
    if (m_isWaiting || m_commands.empty()) return 0;
    m_asked = std::move(m_commands.front());
    m_commands.pop_front();
    m_isWaiting = true;
    std::vector<unsigned char> bytes(LWS_PRE + m_asked.size());
    std::memcpy(bytes.data() + LWS_PRE, m_asked.data(), m_asked.size());
    return lws_write(wsi, bytes.data() + LWS_PRE, m_asked.size(), LWS_WRITE_TEXT) < 0 ? -1 : 0;
}

void Talk::TakePart(lws* wsi, const char* bytes, std::size_t length) {
    m_message.append(bytes, length);
    if (lws_is_final_fragment(wsi) == 0 || lws_remaining_packet_payload(wsi) != 0) return;
    const std::string message = std::exchange(m_message, {});
    if (message.starts_with("{\"event\"")) {
        if (m_conversation.takeEvent && !m_conversation.takeEvent(message)) m_isOver = true;
        return;
    }
    m_isWaiting = false;
    m_conversation.takeAnswer(m_asked, message);
    GoOn();
}

// What there is of the input, without waiting for more.
int Talk::ReadInput() {
    std::array<char, 4096> bytes{};
    const ssize_t count = read(m_conversation.input, bytes.data(), bytes.size());
    if (count > 0) m_line.append(bytes.data(), static_cast<std::size_t>(count));
    for (std::size_t end = 0; (end = m_line.find('\n')) != std::string::npos; m_line.erase(0, end + 1))
        if (end > 0) m_commands.push_back(m_line.substr(0, end));
    const bool isTooLong = m_line.size() > longestControlLine;
    if (count <= 0 || isTooLong) {
        if (isTooLong) Fail("the command is longer than " + std::to_string(longestControlLine) + " bytes");
        if (!m_line.empty()) m_commands.push_back(std::exchange(m_line, {}));
        m_isInputOver = true;
    }
    GoOn();
    return m_isInputOver ? -1 : 0;
}

void Talk::Fail(const std::string& reason) {
    if (m_failure.empty()) m_failure = reason;
    m_isOver = true;
}

}  // namespace

void TalkToWindow(const ControlAddress& address, const ControlConversation& conversation) {
    Talk(address, conversation).Have();
}

}  // namespace kel
