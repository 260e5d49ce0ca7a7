#include <arpa/inet.h>
#include <doctest/doctest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

#include "kel/control/control_service.h"
#include "kel/control/osc_message.h"
#include "kel/control/osc_server.h"
#include "tests/cli/thrown.h"
#include "tests/kel/control/bare_target.h"
#include "tests/kel/control/osc_packet.h"

namespace kel {
namespace {

using cli::testing::Thrown;
using testing::BareTarget;
using testing::BytesOf;
using testing::OscBundle;
using testing::OscPacket;
using testing::OscText;
using testing::OscWord;

std::string LineOf(const std::string& packet) {
    const std::vector<OscMessage> messages = ParseOscPacket(BytesOf(packet));
    REQUIRE_EQ(messages.size(), 1);
    return ControlLineOf(messages[0]);
}

std::string PacketRefused(const std::string& packet) {
    return Thrown([&] { (void)ParseOscPacket(BytesOf(packet)); });
}

void SendTo(int port, const std::string& packet) {
    const int handle = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    (void)sendto(handle, packet.data(), packet.size(), 0, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    close(handle);
}

// 7.5 is 1.875 * 2^2: exponent 129, fraction 0.875, which is 0x40F00000.
const std::string sevenAndAHalf = OscWord(0x40F00000);
// 1.0: exponent 127, fraction 0.
const std::string one = OscWord(0x3F800000);

}  // namespace

TEST_CASE("A message's address and arguments are the words of a command") {
    CHECK_EQ(LineOf(OscPacket("/set/BrushColor", "s", OscText("#ff0000"))), "set BrushColor #ff0000");
    CHECK_EQ(LineOf(OscPacket("/set/BrushWidth", "f", sevenAndAHalf)), "set BrushWidth 7.5");
    CHECK_EQ(LineOf(OscPacket("/set/BrushWidth", "i", OscWord(8))), "set BrushWidth 8");
    CHECK_EQ(LineOf(OscPacket("/set/BrushWidth", "i", OscWord(0xFFFFFFFF))), "set BrushWidth -1");
    CHECK_EQ(LineOf(OscPacket("/set/BrushColor", "r", OscWord(0x0102ff80))), "set BrushColor #0102ff80");
    CHECK_EQ(LineOf(OscPacket("/set/RecoShapes", "T")), "set RecoShapes true");
    CHECK_EQ(LineOf(OscPacket("/film/frame", "h", OscWord(0) + OscWord(120))), "film frame 120");
    CHECK_EQ(LineOf(OscPacket("/set/BrushType", "s", OscText("two words"))), "set BrushType \"two words\"");
    CHECK_EQ(LineOf(OscPacket("/recall/in/place/3", "")), "recall in place 3");
    CHECK_EQ(LineOf(OscText("/undo")), "undo");
}

TEST_CASE("A button is pressed with any number but zero, which is its letting go") {
    CHECK_EQ(LineOf(OscPacket("/button/Undo", "f", one)), "button Undo");
    CHECK_EQ(LineOf(OscPacket("/button/Undo", "f", OscWord(0))), "");
    CHECK_EQ(LineOf(OscPacket("/undo", "F")), "");
    CHECK_EQ(LineOf(OscPacket("/toggle/RecoShapes", "i", OscWord(1))), "toggle RecoShapes");
    CHECK_EQ(LineOf(OscPacket("/step/BrushWidth/-1", "f", one)), "step BrushWidth -1");
    CHECK_EQ(LineOf(OscPacket("/seek", "i", OscWord(0))), "seek 0");
}

TEST_CASE("A bundle's messages come one after the other, those of bundles inside it too") {
    const std::string inner = OscBundle(OscText("/undo"), OscText("/redo"));
    const auto messages = ParseOscPacket(BytesOf(OscBundle(OscText("/pause"), inner)));
    REQUIRE_EQ(messages.size(), 3);
    CHECK_EQ(messages[0].address, "/pause");
    CHECK_EQ(messages[1].address, "/undo");
    CHECK_EQ(messages[2].address, "/redo");
}

TEST_CASE("What is no packet of messages is refused, wherever it is cut") {
    CHECK_EQ(PacketRefused(""), "a text does not end");
    CHECK_EQ(PacketRefused("/und"), "a text does not end");
    CHECK_EQ(PacketRefused(OscText("undo")), "an address begins with a stroke");
    CHECK_EQ(PacketRefused(OscPacket("/a", "b", OscWord(0))), "arguments of type \"b\" are not known");
    CHECK_EQ(PacketRefused(OscText("/a") + OscText("i")), "the types of the arguments are missing");
    CHECK_EQ(PacketRefused(OscPacket("/a", "i")), "the packet ends too early");
    CHECK_EQ(PacketRefused(OscText("#bungle") + OscWord(0) + OscWord(1)),
             "the packet is neither a message nor a bundle");
    CHECK_EQ(PacketRefused(OscText("#bundle") + OscWord(0) + OscWord(1) + OscWord(0xFFFFFFFC)),
             "the packet ends too early");
    std::string deep = OscText("/undo");
    for (int i = 0; i < 9; ++i) deep = OscBundle(OscText("/undo"), deep);
    CHECK_EQ(PacketRefused(deep), "bundles are nested too deep");
    const std::string whole =
        OscBundle(OscPacket("/set/A", "sif", OscText("text") + OscWord(1) + one), OscText("/undo"));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        INFO(length);
        // Cut between two of its parts it is a shorter bundle.
        if (length != 16 && length != 16 + 4 + 8 + 8 + 8 + 8) CHECK_NE(PacketRefused(whole.substr(0, length)), "");
    }
}

TEST_CASE("What comes as OSC changes the workspace, faders rounded") {
    BareTarget target;
    ControlOptions options;
    options.osc = ControlAddress{};
    ControlService service(options);
    const int port = service.Osc().port;
    SendTo(port, "no packet at all");
    SendTo(port, std::string(60'000, '\xff'));
    SendTo(port, OscPacket("/set/BrushWidth", "f", sevenAndAHalf));
    while (!service.RunCommands(target)) continue;
    target.workspace->RunFields(1);
    CHECK_EQ(target.Value("BrushWidth"), 8);  // half is rounded up
}

TEST_CASE("From other machines the first argument is the token") {
    ControlMailbox mailbox;
    const std::string token(32, 'a');
    const OscServer server({"0.0.0.0", 0, token}, mailbox);
    const int port = server.Address().port;
    SendTo(port, OscText("/undo"));
    SendTo(port, OscPacket("/undo", "s", OscText(std::string(32, 'b'))));
    SendTo(port, OscPacket("/undo", "i", OscWord(1)));
    SendTo(port, OscPacket("/set/BrushWidth", "si", OscText(token) + OscWord(8)));
    std::vector<ControlRequest> requests;
    while (requests.empty()) requests = mailbox.TakeRequests(64);
    REQUIRE_EQ(requests.size(), 1);
    CHECK_EQ(requests[0].line, "set BrushWidth 8");
    CHECK(requests[0].numbers == ControlNumbers::OfFaders);
}

TEST_CASE("A port for OSC that is taken, or of no address, is an error") {
    ControlMailbox mailbox;
    const OscServer first({"127.0.0.1", 0, {}}, mailbox);
    const int port = first.Address().port;
    CHECK(Thrown([&] {
              const OscServer second({"127.0.0.1", port, {}}, mailbox);
          }).find("Address already in use") != std::string::npos);
    CHECK_EQ(Thrown([&] {
                 const OscServer none({"nowhere", 1, {}}, mailbox);
             }),
             "nowhere: is no address such as 192.168.1.7");
}

namespace {

// Who is told: a port of its own and the messages that have come there.
class OscListener {
public:
    OscListener() : m_handle(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in place{};
        place.sin_family = AF_INET;
        place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof place;
        REQUIRE_EQ(bind(m_handle, reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
        REQUIRE_EQ(getsockname(m_handle, reinterpret_cast<sockaddr*>(&place), &length), 0);
        address.port = ntohs(place.sin_port);
    }
    ~OscListener() { close(m_handle); }
    OscListener(const OscListener&) = delete;
    OscListener& operator=(const OscListener&) = delete;
    OscListener(OscListener&&) = delete;
    OscListener& operator=(OscListener&&) = delete;

    // The commands that the waiting messages would be; over loopback what was sent is there.
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        std::string packet(2000, '\0');
        for (;;) {
            const ssize_t length = recv(m_handle, packet.data(), packet.size(), MSG_DONTWAIT);
            if (length <= 0) return lines;
            for (const OscMessage& message :
                 ParseOscPacket(BytesOf(packet.substr(0, static_cast<std::size_t>(length)))))
                lines.push_back(ControlLineOf(message));
        }
    }

    ControlAddress address;

private:
    int m_handle;
};

bool Has(const std::vector<std::string>& lines, const std::string& line) {
    return std::ranges::find(lines, line) != lines.end();
}

}  // namespace

TEST_CASE("Whoever is named is told all of the state as OSC, and then each change, in the words of commands") {
    BareTarget target;
    const OscListener listener;
    ControlOptions options;
    options.osc = ControlAddress{};
    options.oscFeedback = listener.address;
    ControlService service(options);
    (void)target.Run("set BrushWidth 7 RecoShapes true");
    target.workspace->RunFields(1);
    service.TellState(*target.workspace);
    const std::vector<std::string> all = listener.Lines();
    for (const char* line : {"opened file grey.png", "set BrushWidth 7", "set RecoShapes 1", "set BrushType Color"})
        CHECK_MESSAGE(Has(all, line), line);
    service.TellState(*target.workspace);
    CHECK(listener.Lines().empty());
    (void)target.Run("set BrushColor #00ff00 RecoShapes false");
    (void)target.Run("fade after 3 over 25");
    target.workspace->RunFields(1);
    service.TellState(*target.workspace);
    const std::vector<std::string> changes = listener.Lines();
    CHECK_EQ(changes,
             std::vector<std::string>{"set BrushColor #00ff00ff", "set RecoShapes 0", "fade after 3", "fade over 25"});
    SendTo(service.Osc().port, OscPacket("/set/BrushWidth", "f", OscWord(0x42C80000)));  // 100
    while (!service.RunCommands(target)) continue;
    CHECK(Has(listener.Lines(), "refused command \"set BrushWidth 100\""));
    service.TellNews("saved");
    CHECK(Has(listener.Lines(), "news text saved"));
}

TEST_CASE("Arguments of every type are written as they are read") {
    const OscMessage message{"/set/A", {1.0, true, false, std::string("text"), OscColour{0x11223344}}};
    CHECK_EQ(OscPacketOf(message), OscPacket("/set/A", "fTFsr", one + OscText("text") + OscWord(0x11223344)));
    CHECK_EQ(LineOf(OscPacketOf(message)), "set A 1 true false text #11223344");
}

}  // namespace kel
