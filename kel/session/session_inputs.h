#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kel/session/session.h"

namespace kel {

// A file that a session reads: when it is opened, or by an event.
struct SessionInput {
    enum class Use : std::uint8_t {
        Picture,
        Video,
        PluginPicture
    };  // a plug-in's own is read once, however often named

    std::string path;  // as the session has it
    std::string place;
    Use use = Use::Picture;
};

// All of them, in the order of the file. Of a plug-in's values, which are not known before its module is loaded, every
// text counts that leads to something.
[[nodiscard]] std::vector<SessionInput> InputsOf(const Session& session);

// Their files and the session's own.
[[nodiscard]] std::vector<std::filesystem::path> InputFilesOf(const Session& session);

// A line for each of its live pictures, which stay as they were never seen: an address that stands in a file may be
// anybody's. What was drawn on them is there all the same.
[[nodiscard]] std::vector<std::string> LiveNotices(const Session& session);

}  // namespace kel
