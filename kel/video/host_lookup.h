#pragma once

#include <string>
#include <vector>

#include "kel/video/stop_signal.h"

namespace kel {

// Where a host is, in numbers such as "127.0.0.1" or "::1", the best first. Empty: it is nowhere, or the wait for the
// answer was stopped. Servers that are asked may be silent for a long time; the question is then left to itself.
[[nodiscard]] std::vector<std::string> LookUpHost(const std::string& host, const StopSignal& stopped);

}  // namespace kel
