#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kel {

// Where a workspace is reached from outside.
struct ControlAddress {
    std::string host = "127.0.0.1";
    int port = 0;       // of a door that is to be opened, 0: any that is free
    std::string token;  // whoever knows it may come in; empty: not known
};

// "PORT" or "ADDRESS:PORT". Throws Error with the reason.
[[nodiscard]] ControlAddress ParseDoorAddress(std::string_view text);
// The same, or what a window prints: "http://ADDRESS:PORT/?token=TOKEN". The port is not 0.
[[nodiscard]] ControlAddress ParseControlAddress(std::string_view text);
// What a window prints.
[[nodiscard]] std::string ControlUrl(const ControlAddress& address);

// True: nobody from another machine gets there.
[[nodiscard]] bool IsLoopback(std::string_view host);

// Nobody guesses it: 128 random bits.
[[nodiscard]] std::string NewControlToken();
// True: both are equal. Takes as long for any other of the same length.
[[nodiscard]] bool SameToken(std::string_view left, std::string_view right);

// The operator's own token for a port, kept from window to window in a file that only they can read, so that what has
// been set up with it goes on working. Empty: there is none.
[[nodiscard]] std::string KeptToken(int port);
// Where it cannot be kept nothing happens; it is printed in any case.
void KeepToken(int port, const std::string& token);
void ForgetToken(int port);

}  // namespace kel
