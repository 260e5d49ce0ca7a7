#pragma once

#include <CLI/CLI.hpp>

#include "kel/outputs/outputs.h"

namespace kel {

// Adds --out, --overlay, --canvas, --fill, --key and --straight, which fill `options` while the line is parsed.
void AddOutputOptions(CLI::App& command, OutputOptions& options);

}  // namespace kel
