#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "apps/kel/commands/session_options.h"
#include "kel/outputs/outputs.h"

namespace kel {

struct PlayOptions {
    std::string session;  // path
    OutputOptions outputs;
    SessionOptions access;
    bool areSavesWritten = true;                       // what the session's own save events ask for
    std::optional<std::filesystem::path> savesFolder;  // none: one named after the session
    bool overwrite = false;                            // saves may replace files
};

// Plays a session without a window and writes its outputs, with a progress line. Throws Error; then nothing is written.
void PlaySession(const PlayOptions& options);

}  // namespace kel
