#pragma once

#include <doctest/doctest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <filesystem>

#include "cli/open_file.h"

namespace kel::testing {

// Tells whether a file was opened since it was asked last.
class OpenWatch {
public:
    explicit OpenWatch(const std::filesystem::path& file) : m_watch(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        REQUIRE(m_watch);
        REQUIRE_GE(inotify_add_watch(m_watch.Descriptor(), file.c_str(), IN_OPEN), 0);
    }
    [[nodiscard]] bool SawOpening() const {
        std::array<char, 4096> events{};
        bool saw = false;
        while (read(m_watch.Descriptor(), events.data(), events.size()) > 0) saw = true;
        return saw;
    }

private:
    cli::OpenFile m_watch;
};

}  // namespace kel::testing
