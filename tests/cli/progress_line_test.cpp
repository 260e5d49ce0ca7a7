#include "cli/progress_line.h"

#include <doctest/doctest.h>
#include <unistd.h>

#include <initializer_list>
#include <string>

#include "tests/cli/terminal.h"

namespace cli {
namespace {

// What a progress line of `count` fields shows on a terminal, at each of `steps` in turn.
std::string Shown(std::int64_t count, std::initializer_list<std::int64_t> steps) {
    const testing::Terminal terminal;
    const int standardError = dup(STDERR_FILENO);
    dup2(terminal.Writer(), STDERR_FILENO);
    {
        ProgressLine line("field", count);
        for (const std::int64_t step : steps) line.Show(step);
    }
    dup2(standardError, STDERR_FILENO);
    close(standardError);
    return terminal.Read();
}

const std::string full(30, '#');
const std::string empty(30, '.');

}  // namespace

TEST_CASE("A progress line shows its first step and its last, and wipes itself" *
          doctest::skip(!testing::TerminalIsPossible())) {
    CHECK_EQ(Shown(4, {0, 4}), "\r[" + empty + "] field 0 of 4\r[" + full + "] field 4 of 4\r\033[K");
    CHECK_EQ(Shown(2, {1}), "\r[###############...............] field 1 of 2\r\033[K");
}

TEST_CASE("Of nothing, all is done" * doctest::skip(!testing::TerminalIsPossible())) {
    CHECK_EQ(Shown(0, {0}), "\r[" + full + "] field 0 of 0\r\033[K");
}

}  // namespace cli
