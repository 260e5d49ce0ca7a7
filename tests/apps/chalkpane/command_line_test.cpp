#include <doctest/doctest.h>

#include <string>

#include "tests/cli/working_folder.h"

namespace chalkpane::app {
namespace {

using cli::testing::Ended;
using cli::testing::WorkingFolder;

void CheckRefused(const std::string& arguments, const std::string& line) {
    CAPTURE(arguments);
    const WorkingFolder folder(CHALKPANE_PROGRAM);
    const Ended ended = folder.Run(arguments);
    CHECK_EQ(ended.complaint, "chalkpane: " + line + "\n");
    CHECK_EQ(ended.exitCode, 2);
    CHECK_EQ(ended.output, "");
}

}  // namespace

TEST_CASE("--version names the program and its version") {
    const WorkingFolder folder(CHALKPANE_PROGRAM);
    const Ended ended = folder.Run("--version");
    CHECK_EQ(ended.exitCode, 0);
    CHECK(ended.output.starts_with("chalkpane "));
    CHECK_EQ(ended.output.find_first_not_of("0123456789.\n", 10), std::string::npos);
}

TEST_CASE("help is --help, of the program or of a command") {
    const WorkingFolder folder(CHALKPANE_PROGRAM);
    CHECK_EQ(folder.Run("help").output, folder.Run("--help").output);
    CHECK_EQ(folder.Run("help paint").output, folder.Run("paint --help").output);
    CHECK_EQ(folder.Run("help paint").exitCode, 0);
}

TEST_CASE("a command or an option that there is none of is refused by its name, with the nearest") {
    CheckRefused("filtr a.png b.png", "command line: there is no command \"filtr\"; did you mean \"filter\"?");
    CheckRefused("help filtr", "command line: there is no command \"filtr\"; did you mean \"filter\"?");
    CheckRefused("filter --aply", "command line: there is no option \"--aply\"; did you mean \"--apply\"?");
    CheckRefused("filter a.png b.png --aply Blur",
                 "command line: there is no option \"--aply\"; did you mean \"--apply\"?");
    CheckRefused("filter a.png b.png --qualty=3",
                 "command line: there is no option \"--qualty\"; did you mean \"--quality\"?");
    CheckRefused("--versoin", "command line: there is no option \"--versoin\"; did you mean \"--version\"?");
}

TEST_CASE("words that are too many are told in the order typed") {
    CheckRefused("curve a b c d e", "command line: \"c\" \"d\" \"e\" were not expected (chalkpane --help tells more)");
    CheckRefused("curve a b c", "command line: \"c\" was not expected (chalkpane --help tells more)");
}

TEST_CASE("a value that looks like an option belongs to the option before it") {
    CheckRefused("filter a.png b.png --apply --depth",
                 "there is no filter \"--depth\"; the nearest are \"Tint\", \"Median\" and \"Blur\"; "
                 "`chalkpane filters` lists all");
}

}  // namespace chalkpane::app
