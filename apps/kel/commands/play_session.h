#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "kel/outputs/outputs.h"

namespace kel {

struct PlayOptions {
    std::string session;  // path
    OutputOptions outputs;
    std::optional<std::filesystem::path> saves = ".";  // where the session's own save events write; none: nowhere
    std::string module;                                // path, for plug-ins that name none; empty: Chalkpane's own
};

// Plays a session without a window and writes its outputs, with a progress line. Throws Error; then nothing is written.
void PlaySession(const PlayOptions& options);

}  // namespace kel
