#pragma once

#include <doctest/doctest.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "tests/shared/desk.h"

namespace shared::testing {

// Runs a program at a desk with standard error on a terminal and returns what it wrote there.
inline std::string RunOnTerminal(const Desk& desk, const std::string& program, const std::string& arguments) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    REQUIRE_GE(terminal, 0);
    REQUIRE_EQ(grantpt(terminal), 0);
    REQUIRE_EQ(unlockpt(terminal), 0);
    const std::string name = ptsname(terminal);
    const int other = open(name.c_str(), O_RDWR | O_NOCTTY);  // keeps what was written until it is read
    REQUIRE_GE(other, 0);
    const std::string command = "cd '" + desk.Path("") + "' && '" + program + "' " + arguments + " 2>'" + name + "'";
    REQUIRE_EQ(std::system(command.c_str()), 0);
    std::string text(4096, '\0');
    const ssize_t count = read(terminal, text.data(), text.size());
    text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    close(other);
    close(terminal);
    return text;
}

}  // namespace shared::testing
