#pragma once

#include <doctest/doctest.h>

#include <nlohmann/json.hpp>
#include <regex>
#include <string>

#include "tests/cli/working_folder.h"
#include "tests/kel/session/session_text.h"

namespace kel::testing {

// With a session in it. The OpenGL driver's threads end while the program does, which the search for leaks does not
// always survive; it is made in the test program, which uses the same host.
class KelFolder : public cli::testing::WorkingFolder {
public:
    explicit KelFolder(const nlohmann::json& session = PlainSession())
        : cli::testing::WorkingFolder(KEL_PROGRAM, "ASAN_OPTIONS=detect_leaks=0") {
        Write("s.json", session.dump());
    }
};

// Bad input ends with exit code 2 and this one line, and no file has appeared.
inline void CheckRefused(const KelFolder& folder, const std::string& arguments, const std::string& line) {
    const std::ptrdiff_t entries = folder.Entries();
    const cli::testing::Ended ended = folder.Run(arguments);
    CHECK_EQ(ended.complaint, "kel: " + line + "\n");
    CHECK_EQ(ended.exitCode, 2);
    CHECK_EQ(ended.output, "");
    CHECK_EQ(folder.Entries(), entries);
}

// The same where the reason is the system's or another program's own.
inline void CheckRefusedLike(const KelFolder& folder, const std::string& arguments, const std::string& pattern) {
    const std::ptrdiff_t entries = folder.Entries();
    const cli::testing::Ended ended = folder.Run(arguments);
    CAPTURE(ended.complaint);
    CHECK(std::regex_match(ended.complaint, std::regex("kel: " + pattern + "\n")));
    CHECK_EQ(ended.exitCode, 2);
    CHECK_EQ(folder.Entries(), entries);
}

// PlainSession with another value at a place; pointer: a JSON pointer.
inline nlohmann::json SessionWith(const char* pointer, const nlohmann::json& value) {
    nlohmann::json session = PlainSession();
    session[nlohmann::json::json_pointer(pointer)] = value;
    return session;
}

}  // namespace kel::testing
