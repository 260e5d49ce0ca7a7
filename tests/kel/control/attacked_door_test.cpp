#include <doctest/doctest.h>

#include <atomic>
#include <thread>

#include "kel/control/control_service.h"
#include "tests/kel/control/bare_target.h"
#include "tests/kel/control/raw_connection.h"

// What an operator draws while others do their worst at the door.

namespace kel {
namespace {

using testing::BareTarget;
using testing::RawConnection;
using testing::StatusOf;

constexpr std::size_t largeMessage = 67'108'864;  // 64 MB

// Connections that stay half open, wrong tokens, and messages of 64 MB, over and over, each on a thread of its own.
class Attack {
public:
    Attack(int port, std::string token) : m_port(port), m_token(std::move(token)) {
        m_threads.emplace_back([this] { HoldHalves(); });
        m_threads.emplace_back([this] { GuessTokens(); });
        m_threads.emplace_back([this] { SendLarge(); });
    }
    ~Attack() {
        m_isOver = true;
        for (std::thread& thread : m_threads) thread.join();
    }
    Attack(const Attack&) = delete;
    Attack& operator=(const Attack&) = delete;
    Attack(Attack&&) = delete;
    Attack& operator=(Attack&&) = delete;

    // Each of the three was met by the door so often.
    [[nodiscard]] bool HasMet(int times) const { return m_halves >= times && m_guesses >= times && m_large >= times; }
    [[nodiscard]] bool HasEntered() const { return m_hasEntered; }

private:
    void HoldHalves() {
        std::vector<RawConnection> held;
        while (!m_isOver) {
            RawConnection half(m_port);
            if (!half.IsConnected() || !half.Send("POST /?token=" + m_token.substr(0, 5))) continue;
            held.push_back(std::move(half));
            ++m_halves;
            constexpr std::size_t mostHeld = 60;
            if (held.size() > mostHeld) held.clear();
        }
    }
    void GuessTokens() {
        std::string token = m_token;
        for (std::size_t at = 0; !m_isOver; at = (at + 1) % token.size()) {
            token[at] = token[at] == '0' ? '1' : '0';
            if (token == m_token) continue;
            std::string request = "POST /?token=";
            request += token;
            request += " HTTP/1.1\r\nHost: a\r\nConnection: close\r\nContent-Length: 12\r\n\r\nbutton Clear";
            const int status = StatusOf(m_port, request);
            if (status == 200) m_hasEntered = true;
            ++m_guesses;
        }
    }
    // With the right token, so that its size alone is what is wrong with it.
    void SendLarge() {
        const std::string piece(1'000'000, 'x');
        while (!m_isOver) {
            const RawConnection large(m_port);
            if (!large.IsConnected() ||
                !large.Send("POST /?token=" + m_token +
                            " HTTP/1.1\r\nHost: a\r\nContent-Length: " + std::to_string(largeMessage) + "\r\n\r\n"))
                continue;
            for (std::size_t sent = 0; sent < largeMessage && large.Send(piece) && !m_isOver;) sent += piece.size();
            ++m_large;
        }
    }

    int m_port;
    std::string m_token;
    std::atomic<bool> m_isOver = false;
    std::atomic<bool> m_hasEntered = false;
    std::atomic<int> m_halves = 0;
    std::atomic<int> m_guesses = 0;
    std::atomic<int> m_large = 0;
    std::vector<std::thread> m_threads;
};

// A stroke, with `betweenFields` before each field.
template <typename BetweenFields>
picture_io::Picture DrawnBy(BareTarget& target, BetweenFields betweenFields) {
    Workspace& workspace = *target.workspace;
    const auto point = [&](PointerKind kind, std::int32_t x, std::int32_t y) {
        betweenFields();
        workspace.Point(kind, x, y);
        workspace.RunFields(1);
    };
    (void)target.Run("set RecoShapes false BrushColor #ff0000");
    point(PointerKind::Press, 40, 60);
    for (std::int32_t x = 60; x <= 280; x += 4) point(PointerKind::Move, x, 60 + x / 3);
    point(PointerKind::Release, 280, 150);
    workspace.RunFields(2);
    return workspace.TheHost().ReadCanvas(workspace.Chosen()->id);
}

}  // namespace

TEST_CASE("Ink is the same, pixel by pixel, while the door is attacked, and nobody gets in") {
    BareTarget quiet;
    const picture_io::Picture wanted = DrawnBy(quiet, [] {});
    BareTarget target;
    ControlService service({ControlAddress{}});
    const Attack attack(service.Door().port, service.Door().token);
    const auto runCommands = [&] { (void)service.RunCommands(target); };
    while (!attack.HasMet(1)) runCommands();
    const picture_io::Picture drawn = DrawnBy(target, [&] {
        runCommands();
        service.TellState(*target.workspace);
    });
    while (!attack.HasMet(3)) runCommands();
    CHECK(drawn == wanted);
    CHECK(target.workspace->TheHost().ReadCanvas(target.workspace->Chosen()->id) == wanted);
    CHECK_FALSE(attack.HasEntered());
}

}  // namespace kel
