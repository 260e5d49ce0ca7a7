#include "kel/control/control_address.h"

#include <doctest/doctest.h>

#include "tests/cli/thrown.h"

namespace kel {
namespace {

using cli::testing::Thrown;

std::string DoorRefused(const std::string& text) {
    return Thrown([&] { (void)ParseDoorAddress(text); });
}

}  // namespace

TEST_CASE("A door is a port of this machine, or an address and a port") {
    CHECK_EQ(ParseDoorAddress("8700").host, "127.0.0.1");
    CHECK_EQ(ParseDoorAddress("8700").port, 8700);
    CHECK_EQ(ParseDoorAddress("0.0.0.0:0").host, "0.0.0.0");
    CHECK_EQ(DoorRefused("x"), "\"x\" is no port, 0 to 65535, nor ADDRESS:PORT");
    CHECK_EQ(DoorRefused("65536"), "\"65536\" is no port, 0 to 65535, nor ADDRESS:PORT");
    CHECK_EQ(DoorRefused("-1"), "\"-1\" is no port, 0 to 65535, nor ADDRESS:PORT");
    CHECK_EQ(DoorRefused(":1"), "\":1\" has no address before its port");
    CHECK_EQ(DoorRefused(""), "\"\" is no port, 0 to 65535, nor ADDRESS:PORT");
}

TEST_CASE("What a window prints is read back") {
    const ControlAddress printed{"192.168.1.7", 8700, "abc"};
    CHECK_EQ(ControlUrl(printed), "http://192.168.1.7:8700/?token=abc");
    const ControlAddress read = ParseControlAddress(ControlUrl(printed));
    CHECK_EQ(read.host, printed.host);
    CHECK_EQ(read.port, printed.port);
    CHECK_EQ(read.token, printed.token);
    CHECK_EQ(ParseControlAddress("8700").token, "");
    CHECK_EQ(Thrown([] { (void)ParseControlAddress("0"); }), "\"0\" is no port of a window");
}

TEST_CASE("Only addresses of this machine are loopback") {
    CHECK(IsLoopback("127.0.0.1"));
    CHECK(IsLoopback("localhost"));
    CHECK_FALSE(IsLoopback("0.0.0.0"));
    CHECK_FALSE(IsLoopback("192.168.1.7"));
}

TEST_CASE("Tokens are long, never the same, and compared as a whole") {
    const std::string token = NewControlToken();
    CHECK_EQ(token.size(), 32);
    CHECK_NE(token, NewControlToken());
    CHECK(SameToken(token, token));
    CHECK_FALSE(SameToken(token, token.substr(1)));
    CHECK_FALSE(SameToken(token, "x" + token.substr(1)));
    CHECK_FALSE(SameToken("", token));
}

}  // namespace kel
