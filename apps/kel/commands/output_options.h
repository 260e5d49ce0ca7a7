#pragma once

#include "kel/outputs/outputs.h"

namespace CLI {
class App;
}

namespace kel {

// Adds --out, --overlay, --canvas, --fill, --key and --straight, which fill `options` while the line is parsed.
void AddOutputOptions(CLI::App& command, OutputOptions& options);

}  // namespace kel
