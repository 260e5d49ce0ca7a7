#include <doctest/doctest.h>

#include <map>
#include <regex>
#include <set>

#include "host/session_parser.h"
#include "tests/host/session_text.h"
#include "tests/shared/temporary_folder.h"
#include "tests/shared/thrown.h"

namespace kel {
namespace {

using nlohmann::json;

json ReadJson(const std::filesystem::path& file) { return json::parse(shared::testing::ReadText(file)); }

const json& Schema() {
    static const json schema = ReadJson(std::filesystem::path(KEL_SOURCE_FOLDER) / "docs/session.schema.json");
    return schema;
}

bool IsOfType(const json& value, const std::string& type) {
    if (type == "object") return value.is_object();
    if (type == "array") return value.is_array();
    if (type == "string") return value.is_string();
    if (type == "boolean") return value.is_boolean();
    if (type == "number") return value.is_number();
    REQUIRE_EQ(type, "integer");
    return value.is_number() && std::floor(value.get<double>()) == value.get<double>();
}

// The part of JSON Schema that this schema uses; a keyword beyond it fails the test.
bool Accepts(const json& schema, const json& value);

bool AcceptsMembers(const json& schema, const json& value) {
    for (const auto& [key, member] : value.items()) {
        if (schema.contains("properties") && schema["properties"].contains(key)) {
            if (!Accepts(schema["properties"][key], member)) return false;
        } else if (const json& others = schema.at("additionalProperties");
                   !others.is_object() || !Accepts(others, member)) {
            return false;
        }
    }
    for (const json& key : schema.value("required", json::array()))
        if (!value.contains(key.get<std::string>())) return false;
    return true;
}

bool AcceptsKeyword(const json& schema, const std::string& keyword, const json& wanted, const json& value) {
    static const std::set<std::string> said = {"title", "description", "default", "$schema", "$defs"};
    static const std::set<std::string> members = {"properties", "additionalProperties", "required"};
    if (said.contains(keyword)) return true;
    if (members.contains(keyword)) return !value.is_object() || AcceptsMembers(schema, value);
    if (keyword == "$ref") return Accepts(Schema()["$defs"][wanted.get<std::string>().substr(8)], value);
    if (keyword == "type") {
        if (wanted.is_string()) return IsOfType(value, wanted);
        return std::any_of(wanted.begin(), wanted.end(), [&](const json& type) { return IsOfType(value, type); });
    }
    if (keyword == "oneOf")
        return std::count_if(wanted.begin(), wanted.end(), [&](const json& one) { return Accepts(one, value); }) == 1;
    if (keyword == "minimum") return !value.is_number() || value >= wanted;
    if (keyword == "maximum") return !value.is_number() || value <= wanted;
    if (keyword == "minItems") return !value.is_array() || value.size() >= wanted;
    if (keyword == "maxItems") return !value.is_array() || value.size() <= wanted;
    if (keyword == "minLength") return !value.is_string() || value.get<std::string>().size() >= wanted;
    if (keyword == "pattern")
        return !value.is_string() || std::regex_search(value.get<std::string>(), std::regex(wanted.get<std::string>()));
    REQUIRE_EQ(keyword, "items");
    if (!value.is_array()) return true;
    return std::all_of(value.begin(), value.end(), [&](const json& element) { return Accepts(wanted, element); });
}

bool Accepts(const json& schema, const json& value) {
    return std::all_of(schema.items().begin(), schema.items().end(), [&](const auto& keyword) {
        return AcceptsKeyword(schema, keyword.key(), keyword.value(), value);
    });
}

// What the parser alone can know, since it is about two places of the file.
bool IsAboutTwoPlaces(const std::string& refusal) {
    for (const char* reason : {"another point", "another container", "there is no container", "no plug-in",
                               "has a plug-in", "have a plug-in", "after the last one", "ends after field"})
        if (refusal.find(reason) != std::string::npos) return true;
    return false;
}

// All places in a JSON value, as pointers.
void CollectPlaces(const json& value, const json::json_pointer& place, std::vector<json::json_pointer>& places) {
    places.push_back(place);
    if (value.is_object())
        for (const auto& [key, member] : value.items()) CollectPlaces(member, place / key, places);
    if (value.is_array())
        for (std::size_t i = 0; i < value.size(); ++i) CollectPlaces(value[i], place / i, places);
}

void CheckAgreement(const json& session, const std::string& what) {
    const std::string refusal = shared::testing::Thrown([&] { (void)testing::Parse(session); });
    const bool isParsed = refusal == "nothing" || IsAboutTwoPlaces(refusal);
    INFO(what << ": the parser says: " << refusal);
    CHECK_EQ(Accepts(Schema(), session), isParsed);
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
        const json& schema = shape.name == "session" ? Schema() : Schema()["$defs"][shape.name];
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
    for (const json& kind : Schema()["properties"]["events"]["items"]["oneOf"])
        inSchema.insert(kind["$ref"].get<std::string>());
    std::set<std::string> inParser;
    const auto shapes = SessionShapes();
    for (std::size_t i = 5; i < shapes.size(); ++i) inParser.insert("#/$defs/" + shapes[i].name);
    CHECK_EQ(inSchema == inParser, true);
}

TEST_CASE("Schema and parser agree about every place of a session, whatever stands there") {
    const json session = testing::CompleteSession();
    CheckAgreement(session, "the session itself");
    std::vector<json::json_pointer> places;
    CollectPlaces(session, json::json_pointer(), places);
    CHECK_GT(places.size(), 80);
    const auto values = json::array({nullptr,
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
                                     json::object()});
    for (const auto& place : places) {
        for (const json& value : values) {
            json changed = session;
            changed[place] = value;
            CheckAgreement(changed, place.to_string() + " is " + value.dump());
        }
        if (place.empty()) continue;
        json without = session;
        json& parent = without[place.parent_pointer()];
        if (parent.is_object()) {
            parent.erase(place.back());
            CheckAgreement(without, place.to_string() + " is missing");
            json renamed = session;
            renamed[place.parent_pointer()]["Width "] = renamed[place];
            CheckAgreement(renamed, place.to_string() + " has a twin of another name");
        }
    }
}

TEST_CASE("The examples are what the schema says and what the parser takes") {
    const auto examples = Examples();
    CHECK_GE(examples.size(), 5);
    for (const auto& file : examples) {
        CAPTURE(file.string());
        CHECK(Accepts(Schema(), ReadJson(file)));
        CHECK_EQ(shared::testing::Thrown([&] { (void)ReadSession(file); }), "nothing");
    }
}

TEST_CASE("The example in the documentation is a session") {
    const std::string text = shared::testing::ReadText(std::filesystem::path(KEL_SOURCE_FOLDER) / "docs/session.md");
    const std::size_t start = text.find("```json\n");
    REQUIRE_NE(start, std::string::npos);
    const std::string example = text.substr(start + 8, text.find("```", start + 8) - start - 8);
    CHECK(Accepts(Schema(), json::parse(example)));
    CHECK_EQ(shared::testing::Thrown([&] { (void)ParseSession(example, "s.json"); }), "nothing");
}

}  // namespace kel
