#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kel/control/control_address.h"

namespace kel {

// What a client asks a window, and what becomes of it.
struct ControlConversation {
    std::vector<std::string> commands;  // asked first
    int input = -1;                     // where lines with further commands come from, to its end; -1: from nowhere
    // Each with a line of JSON.
    std::function<void(const std::string& command, const std::string& answer)> takeAnswer;
    std::function<bool(const std::string& event)> takeEvent;  // false: it is over
    bool staysForEvents = false;                              // when all is answered, until the window closes
};

// Has it, on the calling thread; the next command is sent when the one before it has been answered. Throws Error when
// the window is not reached, lets nobody in, or goes away before it has answered.
void TalkToWindow(const ControlAddress& address, const ControlConversation& conversation);

}  // namespace kel
