#include "kel/control/control_server.h"

#include <doctest/doctest.h>

#include <thread>

#include "kel/control/control_client.h"
#include "tests/cli/thrown.h"
#include "tests/kel/control/raw_connection.h"

namespace kel {
namespace {

using cli::testing::Thrown;
using testing::RawConnection;
using testing::StatusOf;

constexpr const char* doorToken = "0123456789abcdef0123456789abcdef";

// A server on any port whose commands are answered by themselves.
class EchoingServer {
public:
    EchoingServer() {
        m_answerer = std::thread([this] {
            while (!m_isOver) {
                for (const ControlRequest& request : mailbox.TakeRequests(64))
                    mailbox.Answer(request.client, request.line == "bad"
                                                       ? RefusedAnswer("bad").json
                                                       : "{\"ok\":true,\"did\":\"" + request.line + "\"}");
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        });
    }
    ~EchoingServer() {
        m_isOver = true;
        m_answerer.join();
    }
    EchoingServer(const EchoingServer&) = delete;
    EchoingServer& operator=(const EchoingServer&) = delete;
    EchoingServer(EchoingServer&&) = delete;
    EchoingServer& operator=(EchoingServer&&) = delete;

    [[nodiscard]] int Port() const { return server.Address().port; }

    ControlMailbox mailbox;
    ControlServer server{{"127.0.0.1", 0, doorToken}, mailbox};

private:
    std::atomic<bool> m_isOver = false;
    std::thread m_answerer;
};

std::string Post(const std::string& body, const std::string& more = {}, const std::string& given = doorToken) {
    return "POST /?token=" + given + " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n" + more +
           "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string Upgrade(const std::string& more = {}, const std::string& given = doorToken) {
    return "GET /?token=" + given +
           " HTTP/1.1\r\nHost: localhost\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
           "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n" +
           more + "\r\n";
}

std::string Ask(int port, const std::vector<std::string>& commands, const std::string& given = doorToken) {
    std::string answers;
    ControlConversation conversation;
    conversation.commands = commands;
    conversation.takeAnswer = [&](const std::string&, const std::string& answer) { answers += answer + '\n'; };
    TalkToWindow({"127.0.0.1", port, given}, conversation);
    return answers;
}

}  // namespace

TEST_CASE("Each line that is posted is answered by a line, in their order") {
    const EchoingServer echo;
    std::string body;
    CHECK_EQ(StatusOf(echo.Port(), Post("one\ntwo\r\n\nthree"), &body), 200);
    CHECK_EQ(body, "{\"ok\":true,\"did\":\"one\"}\n{\"ok\":true,\"did\":\"two\r\"}\n{\"ok\":true,\"did\":\"three\"}\n");
    CHECK_EQ(StatusOf(echo.Port(), Post("one\nbad"), &body), 400);
    CHECK_EQ(body, "{\"ok\":true,\"did\":\"one\"}\n{\"ok\":false,\"error\":\"bad\"}\n");
}

TEST_CASE("A GET asks for the list, and the token may come as a header") {
    const EchoingServer echo;
    std::string body;
    const std::string request = std::string("GET / HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n") +
                                "Authorization: Bearer " + doorToken + "\r\n\r\n";
    CHECK_EQ(StatusOf(echo.Port(), request, &body), 200);
    CHECK_EQ(body, "{\"ok\":true,\"did\":\"list\"}\n");
}

TEST_CASE("Nobody gets in without the token, over HTTP or WebSocket") {
    const EchoingServer echo;
    std::string body;
    for (const std::string& wrong : {std::string(), std::string("0"), std::string(32, '0'), std::string(300, 'f')}) {
        CHECK_EQ(StatusOf(echo.Port(), Post("undo", {}, wrong), &body), 401);
        CHECK_EQ(body, "{\"ok\":false,\"error\":\"the token is wrong or missing; the window prints it\"}\n");
        CHECK_EQ(StatusOf(echo.Port(), Upgrade({}, wrong)), 401);
    }
    CHECK(Thrown([&] { (void)Ask(echo.Port(), {"one"}, "0"); }).find("the token is wrong") != std::string::npos);
}

TEST_CASE("A web page of elsewhere does not get in, even with the token") {
    const EchoingServer echo;
    for (const char* origin : {"Origin: http://example.com\r\n", "Origin: null\r\n", "Origin: https://localhost\r\n"}) {
        CHECK_EQ(StatusOf(echo.Port(), Post("undo", origin)), 403);
        CHECK_EQ(StatusOf(echo.Port(), Upgrade(origin)), 403);
    }
    CHECK_EQ(StatusOf(echo.Port(), Post("undo", "Origin: http://localhost\r\n")), 200);
}

TEST_CASE("Messages without a length, of 64 MB, and of a length that is no number are refused with a line") {
    const EchoingServer echo;
    const std::string head = std::string("POST /?token=") + doorToken + " HTTP/1.1\r\nHost: a\r\nConnection: close\r\n";
    std::string body;
    CHECK_EQ(StatusOf(echo.Port(), head + "Content-Length: 67108864\r\n\r\n", &body), 413);
    CHECK_EQ(body, "{\"ok\":false,\"error\":\"the message is longer than 65536 bytes\"}\n");
    CHECK_EQ(StatusOf(echo.Port(), head + "Content-Length: 99999999999999999999999\r\n\r\n"), 413);
    CHECK_EQ(StatusOf(echo.Port(), head + "\r\n"), 411);
    CHECK_EQ(StatusOf(echo.Port(), head + "Content-Length: 0\r\n\r\n"), 400);
    CHECK_EQ(StatusOf(echo.Port(), "DELETE" + head.substr(4) + "\r\n"), 405);
    CHECK_EQ(StatusOf(echo.Port(), Post("one")), 200);
}

TEST_CASE("A WebSocket is answered, and told every event") {
    EchoingServer echo;
    CHECK_EQ(Ask(echo.Port(), {"one", "bad"}), "{\"ok\":true,\"did\":\"one\"}\n{\"ok\":false,\"error\":\"bad\"}\n");
    std::vector<std::string> events;
    std::thread listener([&] {
        ControlConversation conversation;
        conversation.commands = {"one"};
        conversation.takeAnswer = [&](const auto&, const auto&) {
            echo.mailbox.TellAll({"{\"event\":\"film\"}", "{\"event\":\"last\"}"});
        };
        conversation.takeEvent = [&](const std::string& event) {
            events.push_back(event);
            return event != "{\"event\":\"last\"}";
        };
        conversation.staysForEvents = true;
        TalkToWindow({"127.0.0.1", echo.Port(), doorToken}, conversation);
    });
    listener.join();
    CHECK_EQ(events, std::vector<std::string>{"{\"event\":\"film\"}", "{\"event\":\"last\"}"});
}

TEST_CASE("A WebSocket message beyond 64 KB ends its connection with the reason") {
    const EchoingServer echo;
    CHECK(Thrown([&] {
              (void)Ask(echo.Port(), {std::string(70'000, 'a')});
          }).find("the message is longer than 65536 bytes") != std::string::npos);
    CHECK_EQ(Ask(echo.Port(), {"one"}), "{\"ok\":true,\"did\":\"one\"}\n");
}

TEST_CASE("The 65th WebSocket is refused with a line, and when one goes the next gets in") {
    const EchoingServer echo;
    std::vector<RawConnection> sockets;
    for (int i = 0; i < ControlServer::mostClients; ++i) {
        sockets.emplace_back(echo.Port());
        REQUIRE(sockets.back().Send(Upgrade()));
        REQUIRE(sockets.back().ReadUntil("\r\n\r\n").starts_with("HTTP/1.1 101"));
    }
    std::string body;
    CHECK_EQ(StatusOf(echo.Port(), Upgrade(), &body), 503);
    CHECK_EQ(body, "{\"ok\":false,\"error\":\"too many clients are connected already\"}\n");
    CHECK_EQ(StatusOf(echo.Port(), Post("one")), 200);  // a command alone still gets through
    sockets.pop_back();
    bool isIn = false;
    while (!isIn) {  // until the server has noticed
        RawConnection next(echo.Port());
        (void)next.Send(Upgrade());
        isIn = next.ReadUntil("\r\n\r\n").starts_with("HTTP/1.1 101");
    }
    CHECK(isIn);
}

TEST_CASE("Of ten thousand that connect and say nothing, a hundred and some are heard, and then others again") {
    const EchoingServer echo;
    int refused = 0;
    {
        // Whoever says nothing is given up after seconds, and a busy machine takes longer than that for all of them:
        // when one that comes late is let in, the room is filled again.
        std::vector<RawConnection> silent;
        const auto fill = [&] {
            silent.clear();
            silent.reserve(ControlServer::mostConnections);
            for (int i = 0; i < ControlServer::mostConnections; ++i) silent.emplace_back(echo.Port());
        };
        fill();
        for (int i = ControlServer::mostConnections; i < 10'000; ++i) {
            RawConnection late(echo.Port());
            if (late.ReadUntil("\r\n").starts_with("HTTP/1.1 503"))
                ++refused;
            else
                fill();
        }
    }
    CHECK_GT(refused, 9'000);
    int status = 0;
    while (status != 200) status = StatusOf(echo.Port(), Post("one"));  // until it has noticed that they went
    CHECK_EQ(status, 200);
}

TEST_CASE("Half a request is given up after some seconds") {
    const EchoingServer echo;
    RawConnection half(echo.Port());
    REQUIRE(half.Send("POST /?token="));
    RawConnection halfBody(echo.Port());
    REQUIRE(halfBody.Send(std::string("POST /?token=") + doorToken +
                          " HTTP/1.1\r\nHost: a\r\nContent-Length: 10\r\n\r\n12"));
    (void)half.ReadToTheEnd();
    (void)halfBody.ReadToTheEnd();
}

TEST_CASE("Noise on the port is refused, and the next one is heard") {
    const EchoingServer echo;
    std::string noise;
    for (int i = 0; i < 100'000; ++i) noise += static_cast<char>(i * 131 >> 3);
    for (std::size_t at = 0; at < 40; ++at) {
        RawConnection connection(echo.Port());
        (void)connection.Send(noise.substr(at * 100));
    }
    RawConnection socket(echo.Port());
    REQUIRE(socket.Send(Upgrade()));
    (void)socket.ReadUntil("\r\n\r\n");
    (void)socket.Send(noise);
    (void)socket.ReadToTheEnd();
    CHECK_EQ(StatusOf(echo.Port(), Post("one")), 200);
}

TEST_CASE("A port that is taken is an error, and nobody answers where there is no window") {
    int port = 0;
    {
        const EchoingServer echo;
        port = echo.Port();
        ControlMailbox mailbox;
        CHECK_EQ(Thrown([&] {
                     const ControlServer second({"127.0.0.1", port, doorToken}, mailbox);
                 }),
                 "127.0.0.1:" + std::to_string(port) + ": the port cannot be opened");
    }
    CHECK(Thrown([&] { (void)Ask(port, {"one"}); }).find("no window answers there") != std::string::npos);
}

TEST_CASE("More commands in a message than are taken are refused together") {
    const EchoingServer echo;
    std::string lines;
    for (std::size_t i = 0; i < ControlServer::mostLines; ++i) lines += "u\n";
    CHECK_EQ(StatusOf(echo.Port(), Post(lines)), 200);
    std::string body;
    CHECK_EQ(StatusOf(echo.Port(), Post(lines + "u"), &body), 413);
    CHECK_EQ(body, "{\"ok\":false,\"error\":\"the message has more than 256 commands\"}\n");
    CHECK(Thrown([&] { (void)Ask(echo.Port(), {lines + "u"}); }).find("more than 256 commands") != std::string::npos);
}

TEST_CASE("Who sends without reading is left waiting or let go, and the next one is answered") {
    const EchoingServer echo;
    RawConnection greedy(echo.Port());
    REQUIRE(greedy.Send(Upgrade()));
    (void)greedy.ReadUntil("\r\n\r\n");
    // A masked text frame with a mask of zeros: 0x81, 0x80 + length, mask, text.
    std::string frame = "\x81\x83";
    frame += std::string(4, '\0') + "one";
    std::string frames;
    for (int i = 0; i < 2000; ++i) frames += frame;
    REQUIRE(greedy.Send(frames));
    CHECK_EQ(StatusOf(echo.Port(), Post("one")), 200);
    std::string answers;
    std::size_t count = 0;
    while (count < 2000) {
        const std::string more = greedy.ReadUntil("did");
        REQUIRE(!more.empty());
        for (std::size_t at = 0; (at = more.find("did", at)) != std::string::npos; ++at) ++count;
    }
    CHECK_EQ(count, 2000);
}

}  // namespace kel
