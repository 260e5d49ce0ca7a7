#pragma once

#include <string>

namespace kel {

// Where live pictures come from, as an operator names it: a device, a screen or an address. docs/live.md has the forms.
struct LiveName {
    enum class Kind { Device, Screen, Address };
    Kind kind = Kind::Address;
    std::string url;          // as the library opens it
    std::string shown;        // for people and files: what may be a secret is left out
    std::string inputFormat;  // of a device or a screen
    std::string protocols;    // that it may use, and no other
    std::string formats;      // that its pictures may come in, and no other
    std::string size;         // of a screen's part, "640x480"; empty: all of it
    std::string windowId;     // of one window of a screen; empty: none
    bool isAwaited = false;   // the other side comes when it likes, so opening takes as long as it takes
    bool isNear = false;      // of an address: this machine
};

// True: it has the form of such a name, right or wrong, and not that of a file.
[[nodiscard]] bool IsLiveName(const std::string& name);

// Nothing is opened yet. Throws Error for a name that nothing can be opened by, with the nearest that can.
[[nodiscard]] LiveName ParseLiveName(const std::string& name);

}  // namespace kel
