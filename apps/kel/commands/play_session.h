#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "apps/kel/commands/session_options.h"
#include "apps/kel/commands/timeline_option.h"
#include "kel/outputs/live_address.h"
#include "kel/outputs/outputs.h"

namespace kel {

struct PlayOptions {
    std::string session;  // path
    OutputOptions outputs;
    std::vector<LiveRequest> live;  // sent while it plays, which is then as fast as one looks at it
    SessionOptions access;
    bool areSavesWritten = true;                       // what the session's own save events ask for
    std::optional<std::filesystem::path> savesFolder;  // none: one named after the session
    std::string journal;                               // path; empty: none
    bool overwrite = false;                            // saves may replace files
    TimelineChoice timeline = TimelineChoice::Usual;
    // Told how many pictures of how many are done; false: the play stops as if it were interrupted. Empty: not told.
    std::function<bool(std::int64_t done, std::int64_t all)> progress;
};

// Thrown where the progress said so; nothing is written then.
class PlayStopped : public std::exception {};

// Plays a session without a window and writes its outputs, with a progress line. Throws Error; then nothing is written.
void PlaySession(const PlayOptions& options);

}  // namespace kel
