#include <doctest/doctest.h>

#include <set>

#include "apps/chalkpane/strokes/brush_parser.h"
#include "apps/chalkpane/strokes/strokes_file.h"
#include "apps/chalkpane/strokes/strokes_shapes.h"
#include "tests/address_checks.h"
#include "tests/cli/json_schema.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"

namespace chalkpane::app {
namespace {

using cli::testing::JsonSchema;
using cli::testing::Thrown;
using nlohmann::json;

std::filesystem::path InTheSources(const std::string& path) {
    return std::filesystem::path(CHALKPANE_SOURCE_FOLDER) / path;
}

const JsonSchema& Schema() {
    static const JsonSchema schema(json::parse(cli::testing::ReadText(InTheSources("docs/strokes.schema.json"))));
    return schema;
}

std::set<std::string> KeysOf(const json& properties) {
    std::set<std::string> keys;
    for (const auto& member : properties.items()) keys.insert(member.key());
    return keys;
}

std::set<std::string> SetOf(const std::vector<std::string>& names) { return {names.begin(), names.end()}; }

std::string Refusal(const json& file) {
    return Thrown([&] { (void)ParseStrokes(file.dump(), "s.json"); });
}

// A file with every key that there is.
json CompleteFile() {
    return json::parse(R"({
        "$schema": "strokes.schema.json",
        "canvas": {"width": 100, "height": 80, "color": "#10203040"},
        "depth": 14,
        "seed": 7,
        "brushes": {
            "soft": {
                "color": [1, 2, 3], "picture": {"file": "a.png", "at": [-3, 4]}, "mask": "m.png",
                "filters": [{"filter": "Median", "active": true, "Radius": 3}],
                "Name": "n", "Source Type": "Cutout", "File": "c.png", "Opacity": 0.5, "Decay": 0.1, "Spacing": 0.2,
                "Adjust Spacing": true, "Spacing Type": 1, "Match Path": true, "Build Up": false,
                "Profile Graph": [[0, 0], [0.5, 1, 0.4, 1, 0.6, 1], [1, 0]], "Global Parameters": false,
                "Blend Mode": "Multiply", "Group": "g", "Profile Name": "Soft", "Profile Mask": "p.png", "Size": 9,
                "Flatness": 2, "Rotation": 30, "Roundness": 1.5, "Feather": 0.3, "Offset": [5, -6], "Pickup": "Once",
                "Profile Type": "Texture", "Rows": 2, "Columns": 3, "Selection Policy": "Forward"
            }
        },
        "strokes": [
            {"brush": "soft", "points": [[1, 2], [3.5, 4, 0.5]]},
            {"brush": {"like": "soft", "picture": "canvas", "Brush Size": 3}, "points": [[1, 2]], "seed": 3}
        ]
    })");
}

// What is about another place of the file, or beyond what a schema can say.
bool IsBeyondTheSchema(const std::string& refusal) {
    for (const char* reason :
         {"there is no brush", "left of the one before", "by its other name", "/filters/", "is too large"})
        if (refusal.find(reason) != std::string::npos) return true;
    return false;
}

// Values of parameters may also be written as texts, which the schema leaves to those who know why.
bool IsParameterAsText(const std::string& what) {
    static const std::set<std::string> names = SetOf(BrushParameterNames());
    const std::size_t is = what.find(" is ");
    if (is == std::string::npos) return false;
    const std::string place = what.substr(0, is);
    return std::ranges::any_of(names,
                               [&](const std::string& name) { return place.find('/' + name) != std::string::npos; }) ||
           place.find("/color") != std::string::npos;
}

void CheckAgreement(const json& file, const std::string& what) {
    const std::string refusal = Refusal(file);
    INFO(what << ": the parser says: " << refusal);
    const bool isParsed = refusal == "nothing" || IsBeyondTheSchema(refusal);
    if (Schema().Accepts(file))
        CHECK(isParsed);
    else if (!IsParameterAsText(what))
        CHECK_FALSE(refusal == "nothing");
}

}  // namespace

TEST_CASE("The schema of strokes names the keys that the parser takes, and no others") {
    const json& definitions = Schema().Root()["$defs"];
    for (const StrokesShape& shape : StrokesShapes()) {
        CAPTURE(shape.name);
        if (shape.name == "canvas") continue;
        const json& schema = shape.name == "file" ? Schema().Root() : definitions[shape.name];
        CHECK_EQ(KeysOf(schema["properties"]), SetOf(shape.keys));
        CHECK_EQ(SetOf(schema["required"].get<std::vector<std::string>>()), SetOf(shape.required));
        CHECK_EQ(schema["additionalProperties"], false);
    }
    auto canvasKeys = KeysOf(definitions["plainCanvas"]["properties"]);
    canvasKeys.merge(KeysOf(definitions["pictureCanvas"]["properties"]));
    CHECK_EQ(canvasKeys, SetOf(StrokesShapes().at(1).keys));
    auto brushKeys = SetOf(BrushKeys());
    brushKeys.merge(SetOf(BrushParameterNames()));
    CHECK_EQ(KeysOf(definitions["brush"]["properties"]), brushKeys);
    CHECK_EQ(KeysOf(definitions["picture"]["properties"]), SetOf(BrushPictureKeys()));
    CHECK_EQ(KeysOf(definitions["filter"]["properties"]), SetOf(FilterKeys()));
}

TEST_CASE("Schema and parser agree about every place of a file of strokes, whatever stands there") {
    const json file = CompleteFile();
    CheckAgreement(file, "the file itself");
    CHECK(Schema().Accepts(file));
    CHECK_EQ(Refusal(file), "nothing");
    int changes = 0;
    const json few = {nullptr, -2e6, "c\td.png", json::array({1, 2, 1}), json::object()};
    const json all = {nullptr,
                      true,
                      0,
                      1,
                      -1,
                      0.5,
                      3.0,
                      8,
                      2e6,
                      -2e6,
                      "",
                      "x",
                      "b.png",
                      "c\td.png",
                      "#102030",
                      "Multiply",
                      json::array(),
                      json::array({1, 2}),
                      json::array({1, 2, 1}),
                      json::object()};
    // Parsing under the checks takes twenty times as long, and they have no need of every value.
    const json& values = tests::hasAddressChecks ? few : all;
    cli::testing::ForEachChange(file, values, [&](const json& changed, const std::string& what) {
        CheckAgreement(changed, what);
        ++changes;
    });
    CHECK_GT(changes, 75 * static_cast<int>(values.size()));
}

TEST_CASE("The examples and the documentation show files that the schema and the parser take") {
    std::vector<json> files;
    for (const auto& entry : std::filesystem::directory_iterator(InTheSources("examples/strokes")))
        if (entry.path().extension() == ".json") files.push_back(json::parse(cli::testing::ReadText(entry.path())));
    CHECK_GE(files.size(), 3);
    const std::string text = cli::testing::ReadText(InTheSources("docs/strokes.md"));
    for (std::size_t start = text.find("```json\n"); start != std::string::npos;
         start = text.find("```json\n", start + 8))
        files.push_back(json::parse(text.substr(start + 8, text.find("```", start + 8) - start - 8)));
    CHECK_GE(files.size(), 4);
    for (const json& file : files) {
        CAPTURE(file.dump().substr(0, 100));
        CHECK(Schema().Accepts(file));
        CHECK_EQ(Refusal(file), "nothing");
    }
}

TEST_CASE("The pictures that docs/brushes.md shows are those that lie beside it") {
    const std::string text = cli::testing::ReadText(InTheSources("docs/brushes.md"));
    std::set<std::string> shown;
    for (std::size_t start = text.find("](brushes/"); start != std::string::npos;
         start = text.find("](brushes/", start + 1))
        shown.insert(text.substr(start + 10, text.find(')', start) - start - 10));
    std::set<std::string> there;
    for (const auto& entry : std::filesystem::directory_iterator(InTheSources("docs/brushes")))
        there.insert(entry.path().filename().string());
    CHECK_GE(there.size(), 60);
    CHECK_EQ(shown, there);
}

}  // namespace chalkpane::app
