#include <doctest/doctest.h>

#include <map>
#include <set>

#include "kel/session/session_parser.h"
#include "tests/address_checks.h"
#include "tests/cli/json_schema.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"
#include "tests/kel/session/session_text.h"

namespace kel {
namespace {

using cli::testing::JsonSchema;
using nlohmann::json;

json ReadJson(const std::filesystem::path& file) { return json::parse(cli::testing::ReadText(file)); }

const JsonSchema& Schema() {
    static const JsonSchema schema(ReadJson(std::filesystem::path(KEL_SOURCE_FOLDER) / "docs/session.schema.json"));
    return schema;
}

// What the parser alone can know, since it is about two places of the file.
bool IsAboutTwoPlaces(const std::string& refusal) {
    for (const char* reason :
         {"another point", "another container", "there is no container", "no plug-in", "has a plug-in",
          "have a plug-in", "no film", "have a film", "after the last one", "ends after field"})
        if (refusal.find(reason) != std::string::npos) return true;
    return false;
}

void CheckAgreement(const json& session, const std::string& what) {
    const std::string refusal = cli::testing::Thrown([&] { (void)testing::Parse(session); });
    const bool isParsed = refusal == "nothing" || IsAboutTwoPlaces(refusal);
    INFO(what << ": the parser says: " << refusal);
    CHECK_EQ(Schema().Accepts(session), isParsed);
}

std::vector<std::filesystem::path> Examples() {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(KEL_SOURCE_FOLDER) / "examples"))
        if (entry.path().extension() == ".json") files.push_back(entry.path());
    return files;
}

}  // namespace

TEST_CASE("The schema names the keys that the parser takes, and no others") {
    for (const SessionShape& shape : SessionShapes()) {
        CAPTURE(shape.name);
        const json& schema = shape.name == "session" ? Schema().Root() : Schema().Root()["$defs"][shape.name];
        const json required = schema["required"];
        std::map<std::string, bool> inSchema;
        for (const auto& [key, value] : schema["properties"].items())
            inSchema[key] = std::find(required.begin(), required.end(), key) != required.end();
        std::map<std::string, bool> inParser;
        for (const SessionShape::Key& key : shape.keys) inParser[key.name] = key.required;
        CHECK_EQ(inSchema == inParser, true);
        CHECK_EQ(schema["additionalProperties"], false);
    }
}

TEST_CASE("The schema knows every kind of event that the parser takes") {
    std::set<std::string> inSchema;
    for (const json& kind : Schema().Root()["properties"]["events"]["items"]["oneOf"])
        inSchema.insert(kind["$ref"].get<std::string>());
    std::set<std::string> inParser;
    const auto shapes = SessionShapes();
    for (std::size_t i = 7; i < shapes.size(); ++i) inParser.insert("#/$defs/" + shapes[i].name);
    CHECK_EQ(inSchema == inParser, true);
}

TEST_CASE("Schema and parser agree about every place of a session, whatever stands there") {
    const json session = testing::CompleteSession();
    CheckAgreement(session, "the session itself");
    const json few = {nullptr, -2e6, "c\td.png", json::array({1, 2, 3}), json::object()};
    const json all = {nullptr,
                      true,
                      0,
                      1,
                      -1,
                      0.5,
                      3.0,
                      170.5,
                      1000.5,
                      9000,
                      2e6,
                      -2e6,
                      "",
                      "x",
                      "a/b.png",
                      "b.png",
                      "c\td.png",
                      json::array(),
                      json::array({1, 2}),
                      json::array({1, 2, 3}),
                      json::object()};
    // Parsing under the checks takes twenty times as long, and they have no need of every value.
    const json& values = tests::hasAddressChecks ? few : all;
    int changes = 0;
    cli::testing::ForEachChange(session, values, [&](const json& changed, const std::string& what) {
        CheckAgreement(changed, what);
        ++changes;
    });
    CHECK_GT(changes, 80 * static_cast<int>(values.size()));
}

TEST_CASE("The examples are what the schema says and what the parser takes") {
    const auto examples = Examples();
    CHECK_GE(examples.size(), 5);
    for (const auto& file : examples) {
        CAPTURE(file.string());
        CHECK(Schema().Accepts(ReadJson(file)));
        CHECK_EQ(cli::testing::Thrown([&] { (void)ReadSession(file); }), "nothing");
    }
}

TEST_CASE("The example in the documentation is a session") {
    const std::string text = cli::testing::ReadText(std::filesystem::path(KEL_SOURCE_FOLDER) / "docs/session.md");
    const std::size_t start = text.find("```json\n");
    REQUIRE_NE(start, std::string::npos);
    const std::string example = text.substr(start + 8, text.find("```", start + 8) - start - 8);
    CHECK(Schema().Accepts(json::parse(example)));
    CHECK_EQ(cli::testing::Thrown([&] { (void)ParseSession(example, "s.json"); }), "nothing");
}

}  // namespace kel
