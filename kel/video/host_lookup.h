#pragma once

#include <string>
#include <vector>

#include "kel/video/stop_signal.h"

namespace kel {

// Where a host is, in numbers such as "127.0.0.1" or "::1", the best first. Empty: it is nowhere, or the wait for the
// answer was stopped. Servers that are asked may be silent for a long time; the question is then left to itself.
[[nodiscard]] std::vector<std::string> LookUpHost(const std::string& host, const StopSignal& stopped);

struct HostAnswer {
    bool isThere = false;              // false: none came soon
    std::vector<std::string> numbers;  // as above
    std::string reason;                // why there are none
};
// The same for a program that begins, which waits for no more than two seconds.
[[nodiscard]] HostAnswer LookUpHostSoon(const std::string& host);

}  // namespace kel
