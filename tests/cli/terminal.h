#pragma once

#include <doctest/doctest.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/cli/working_folder.h"

namespace cli::testing {

// True where this machine has pseudo terminals, and in CI, where a test that needs one is to fail without. Else the
// tests that ask are skipped, and the first of them says so.
inline bool TerminalIsPossible() {
    static const bool isPossible = [] {
        const int end = posix_openpt(O_RDWR | O_NOCTTY);
        const bool isThere = end >= 0 && grantpt(end) == 0 && unlockpt(end) == 0 && ptsname(end) != nullptr;
        if (end >= 0) close(end);
        const char* ci = std::getenv("CI");
        if (isThere || (ci != nullptr && std::string(ci) == "true")) return true;
        std::fputs("skipped: there is no pseudo terminal on this machine (is /dev/pts mounted?)\n", stderr);
        return false;
    }();
    return isPossible;
}

// A terminal for a program or this process to write on.
class Terminal {
public:
    Terminal() : m_reader(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK)) {
        REQUIRE_GE(m_reader, 0);
        REQUIRE_EQ(grantpt(m_reader), 0);
        REQUIRE_EQ(unlockpt(m_reader), 0);
        m_name = ptsname(m_reader);
        m_writer = open(m_name.c_str(), O_RDWR | O_NOCTTY);  // open to the end, so that what was written is kept
        REQUIRE_GE(m_writer, 0);
    }
    ~Terminal() {
        close(m_writer);
        close(m_reader);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    Terminal(Terminal&&) = delete;
    Terminal& operator=(Terminal&&) = delete;

    [[nodiscard]] const std::string& Name() const { return m_name; }
    [[nodiscard]] int Writer() const { return m_writer; }

    // All that was written so far. It arrives a little later than it was written, but in order: so a mark behind it is
    // waited for.
    [[nodiscard]] std::string Read() const {
        constexpr char mark = '\1';
        REQUIRE_EQ(write(m_writer, &mark, 1), 1);
        std::string text;
        while (!text.ends_with(mark)) {
            pollfd arrival{m_reader, POLLIN, 0};
            REQUIRE_EQ(poll(&arrival, 1, longestWait), 1);
            std::array<char, 4096> bytes{};
            const ssize_t count = read(m_reader, bytes.data(), bytes.size());
            REQUIRE_GT(count, 0);
            text.append(bytes.data(), static_cast<std::size_t>(count));
        }
        text.pop_back();
        return text;
    }

private:
    static constexpr int longestWait = 60000;  // milliseconds; then something is wrong

    int m_reader;
    int m_writer = -1;
    std::string m_name;
};

// Runs a program at a folder with standard error on a terminal and returns what it wrote there. Leaks are not searched
// for: the threads of an OpenGL driver end while the search goes on.
inline std::string RunOnTerminal(const WorkingFolder& folder, const std::string& program,
                                 const std::string& arguments) {
    const Terminal terminal;
    const std::string command = "cd '" + folder.Path("") + "' && ASAN_OPTIONS=detect_leaks=0 '" + program + "' " +
                                arguments + " 2>'" + terminal.Name() + "'";
    REQUIRE_EQ(std::system(command.c_str()), 0);
    return terminal.Read();
}

}  // namespace cli::testing
