#include "kel/session/session_lines.h"

#include <doctest/doctest.h>

#include <nlohmann/json.hpp>

#include "kel/session/session.h"
#include "tests/cli/thrown.h"

namespace kel {
namespace {

using cli::testing::Thrown;

const std::string scene = R"({"recording":true,"window":{"width":64,"height":48},"camera":{"position":[0,0,9],)"
                          R"("target":[0,0,0]},"containers":[{"name":"pane","size":[4,4]}]})"
                          "\n";
const std::string twoEvents = "{\"field\":3,\"press\":[1,2]}\n{\"field\":9,\"release\":[3,4]}\n";

Session Parse(const std::string& text) { return ParseSession(WholeSessionText(text), "run.json"); }

}  // namespace

TEST_CASE("A session that is recorded line by line has its events in order and the fields said last") {
    const Session session = Parse(scene + "{\"fields\":1}\n" + twoEvents + "{\"fields\":12}\n{\"fields\":40}\n");
    CHECK_EQ(session.isRecording, true);
    CHECK_EQ(session.window.width, 64);
    REQUIRE_EQ(session.events.size(), 2U);
    CHECK_EQ(session.events[0].field, 3);
    CHECK_EQ(session.events[1].field, 9);
    CHECK_EQ(session.fields, 40);
}

TEST_CASE("A recording that ends anywhere is a session with all of its whole lines") {
    const std::string text = scene + "{\"fields\":1}\n" + twoEvents + "{\"fields\":12}\n";
    for (std::size_t length = scene.size() + 13; length <= text.size(); ++length) {
        const std::string cut = text.substr(0, length);
        CAPTURE(cut);
        const Session session = Parse(cut);
        // An event counts with its closing brace; the fields are at least those of the events.
        const std::size_t first = scene.size() + 13 + 25;
        const std::size_t second = first + 1 + 27;
        const std::size_t whole = length >= second ? 2 : length >= first ? 1 : 0;
        CHECK_EQ(session.events.size(), whole);
        CHECK_GE(session.fields, whole == 2 ? 10 : whole == 1 ? 4 : 1);
    }
}

TEST_CASE("A session that is one object stays as it is, however its lines are broken") {
    const std::string pretty = nlohmann::json::parse(scene).dump(2);
    const std::string flat = nlohmann::json::parse(scene).dump();
    for (const std::string& text :
         {pretty, flat, flat + "\n\n", std::string(), std::string("\n"), std::string("{}\n{}")})
        CHECK_EQ(WholeSessionText(text), text);
}

TEST_CASE("A recorded line that is broken in the midst is told with its number") {
    const std::string refusal = Thrown([&] { (void)Parse(scene + "{\"field\":3,\"press\":[1,2}\n" + twoEvents); });
    CHECK_NE(refusal.find("line 2"), std::string::npos);
    CHECK_NE(Thrown([&] { (void)Parse(scene + "{\"field\":3,\"pres\":[1,2]}\n"); }).find("press"), std::string::npos);
}

}  // namespace kel
