#pragma once

#include <vector>

#include "kel/outputs/live_address.h"
#include "kel/outputs/outputs.h"

namespace CLI {
class App;
}

namespace kel {

// Adds --out, --overlay, --canvas, --fill, --key and --straight, which fill `options` while the line is parsed.
void AddOutputOptions(CLI::App& command, OutputOptions& options);

// Adds --live and its like for the other views, each as often as the operator wants.
void AddLiveOptions(CLI::App& command, std::vector<LiveRequest>& requests);

}  // namespace kel
