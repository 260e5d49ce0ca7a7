#include "apps/chalkpane/values/parameter_json.h"

#include <doctest/doctest.h>

#include <nlohmann/json.hpp>

#include "chalkpane/parameters/parameter_list.h"
#include "tests/cli/thrown.h"

namespace chalkpane::app {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

std::string TextOf(const char* text) { return TextOfJson(json::parse(text)); }

}  // namespace

TEST_CASE("A value of JSON has the text that a parameter takes") {
    CHECK_EQ(TextOf("\"#ff0000\""), "#ff0000");
    CHECK_EQ(TextOf("3"), "3");
    CHECK_EQ(TextOf("0.1"), "0.1");
    CHECK_EQ(TextOf("true"), "true");
    CHECK_EQ(TextOf("[0.5, 12]"), "0.5,12");
    CHECK_EQ(TextOf("[[0, 0], [0.3, 0.6], [1, 1]]"), "0,0;0.3,0.6;1,1");
    CHECK_EQ(TextOfJson(ordered_json::parse("[1, 2]")), "1,2");
}

TEST_CASE("A value that no parameter takes is refused") {
    const auto refusal = [](const char* text) { return cli::testing::Thrown([text] { (void)TextOf(text); }); };
    CHECK_EQ(refusal("null"), "a value cannot be null");
    CHECK_EQ(refusal("{}"), "a value cannot be object");
    CHECK_EQ(refusal("[[[1]]]"), "a value cannot be array");
    CHECK_EQ(refusal("[1, null]"), "a value cannot be null");
}

TEST_CASE("A description is JSON with numbers as numbers") {
    ParameterList list;
    list.addFloat("Brush Fade", "Fade", 0.1F, 0.0F, 1.5F, 0);
    list.addEnumeration("Type", "Type", 1, 1);
    const ParameterTexts texts("brush", list, [](const ParameterDef&) {
        return std::vector<std::string>{"Paint", "Erase"};
    });
    CHECK_EQ(JsonOf(texts.Describe()[0]).dump(),
             R"({"label":"Fade","key":"Brush Fade","type":"number","default":0.1,"minimum":0,"maximum":1.5})");
    CHECK_EQ(JsonOf(texts.Describe()[1]).dump(),
             R"({"label":"Type","key":"Type","type":"choice","default":"Erase","choices":["Paint","Erase"]})");
}

}  // namespace chalkpane::app
