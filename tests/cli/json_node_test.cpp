#include "cli/json_node.h"

#include <doctest/doctest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "tests/address_checks.h"
#include "tests/cli/thrown.h"

namespace cli {
namespace {

// Under the checks of addresses each takes half a minute.
constexpr std::size_t manyPoints = tests::hasAddressChecks ? 100'000 : 1'000'000;
constexpr std::size_t manyObjects = tests::hasAddressChecks ? 50'000 : 500'000;

std::string TextRefusal(const std::string& text) {
    return testing::Thrown([&] { (void)ParseJson(text, "f.json"); });
}

std::string Repeated(std::string_view text, std::size_t count) {
    std::string repeated;
    repeated.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i) repeated += text;
    return repeated;
}

}  // namespace

TEST_CASE("Nesting is limited to 32 levels") {
    CHECK_EQ(TextRefusal(Repeated("[", 32) + Repeated("]", 32)), "nothing");
    CHECK_EQ(TextRefusal(Repeated("[", 33) + Repeated("]", 33)),
             "f.json: " + Repeated("/0", 32) + ": nested too deeply");
}

TEST_CASE("A key stands once in an object, and may stand in another") {
    CHECK_EQ(TextRefusal(R"([{"a": 1}, {"a": 2}])"), "nothing");
    CHECK_EQ(TextRefusal(R"({"b": {"a": 1, "a": 2}})"), "f.json: /b/a: the key stands twice");
}

// A list in a list counts 48 + 48 bytes, the outer one too, and 5592405 times that is the most below 2^29: 17 MB of
// text hold more. Read as they come, 62 MB of them would take 3 GB.
TEST_CASE("A small text that would take gigabytes is refused while it is read") {
    CHECK_EQ(TextRefusal('[' + Repeated("[],", 5'700'000) + "0]"),
             "f.json: /5592404: up to here the file holds more than 512 MiB of memory have room for");
}

// A process of its own begins with what there is now, so its peak tells what the refusal took.
TEST_CASE("A text that is refused for its size has taken no memory but its own" *
          doctest::skip(tests::hasAddressChecks)) {
    const std::string text = '[' + Repeated("[],", 5'700'000) + "0]";
    const pid_t child = fork();
    REQUIRE_GE(child, 0);
    if (child == 0) {
        const auto peak = [] {
            rusage usage{};
            getrusage(RUSAGE_SELF, &usage);
            return usage.ru_maxrss;  // KiB
        };
        const long before = peak();
        const bool isRefused = TextRefusal(text) != "nothing";
        _exit(isRefused && peak() - before < 32 * 1024 ? 0 : 1);
    }
    int status = -1;
    REQUIRE_EQ(waitpid(child, &status, 0), child);
    CHECK_EQ(status, 0);
}

TEST_CASE("A million points are read") {
    const auto json = ParseJson('[' + Repeated("[1.5,2.5,1],", manyPoints) + "[]]", "f.json");
    CHECK_EQ(json.size(), manyPoints + 1);
}

// Half a million objects in one list: reading that looked through the list at the end of each would take days.
TEST_CASE("A list of many objects is read in the time of its length") {
    const auto json = ParseJson('[' + Repeated(R"({"a":[1]},)", manyObjects) + R"({"b":{"c":-1}}])", "f.json");
    CHECK_EQ(json.size(), manyObjects + 1);
    CHECK_EQ(json[manyObjects - 1].dump(), R"({"a":[1]})");
    CHECK_EQ(json[manyObjects].dump(), R"({"b":{"c":-1}})");
}

TEST_CASE("Every kind of value is read as what it is") {
    const std::string text = R"({"a":[null,true,-3,18446744073709551615,0.5,"x"],"b":{},"c":[]})";
    CHECK_EQ(ParseJson(text, "f.json").dump(), text);
    CHECK_EQ(TextRefusal(R"({"a": [1, 1e400]})"), "f.json: /a/1: the number is too large");
    CHECK(ParseJson("7", "f.json").is_number_unsigned());
}

}  // namespace cli
