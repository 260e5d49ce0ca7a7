#include "apps/chalkpane/presets/preset.h"

#include <doctest/doctest.h>

#include <cmath>
#include <limits>
#include <random>

#include "apps/chalkpane/curves/frame_rate_clock.h"
#include "apps/chalkpane/presets/preset_values.h"
#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/brush/sources/brush_source.h"
#include "chalkpane/filters/filter_registry.h"
#include "chalkpane/parameters/animation/animated_file_name.h"
#include "chalkpane/parameters/animation/animated_value.h"
#include "chalkpane/parameters/animation/colour_spline.h"
#include "chalkpane/parameters/graph_value.h"
#include "chalkpane/parameters/scalar_values.h"
#include "chalkpane/parameters/string_value.h"
#include "chalkpane/parameters/text/text_scanner.h"
#include "cli/error.h"
#include "tests/cli/temporary_folder.h"

namespace {

using namespace chalkpane;
using namespace chalkpane::app;

const FrameRateClock clock25;

Preset Read(const std::string& text) { return ReadPresetText(text, "look", {}, clock25); }

std::string Refusal(const std::string& text) {
    try {
        Read(text);
    } catch (const cli::Error& error) {
        return error.what();
    }
    return "";
}

ParameterValue& ValueOf(const DataSet& values, std::string_view name) {
    for (const ValuePointer& value : values)
        if (value->getParameter()->name == name) return *value;
    FAIL("no such value: " << std::string(name));
    throw std::logic_error("unreachable");
}

std::unique_ptr<Filter> FilterNamed(std::string_view name) {
    for (const Filter* prototype : FilterRegistry::Instance().Filters()) {
        if (prototype->Name() != name) continue;
        auto filter = prototype->CreateNew();
        filter->MakeValues(false, nullptr, nullptr);
        return filter;
    }
    FAIL("no such filter: " << std::string(name));
    return nullptr;
}

PresetView ViewOfOne(const Filter& filter) { return {PresetKind::Filter, std::string(filter.Name()), {}, {&filter}}; }

TEST_CASE("A filter is written as its name and a line per parameter, choices with their labels") {
    const auto filter = FilterNamed("Marble Effect");
    ValueOf(*filter->m_values, "Edges").setEnumeration(1);
    const std::string text = TextOfPreset(ViewOfOne(*filter), {});
    CHECK(text.starts_with("# A Chalkpane preset\nfilter \"Marble Effect\" {\n    \""));
    CHECK(text.ends_with("\n}\n"));
    const ParameterDef& edges = *ValueOf(*filter->m_values, "Edges").getParameter();
    CHECK_NE(text.find("    \"Edges\" true 1  # " + std::string(filter->EnumLabel(edges, 1)) + "\n"),
             std::string::npos);
}

TEST_CASE("A plain preset reads into a filter's values; what is left out has its default") {
    const Preset preset = Read("filter 'Pixellate Effect' { # blocks\n}\n# end");
    CHECK(preset.kind == PresetKind::Filter);
    CHECK_EQ(preset.name, "Pixellate Effect");
    REQUIRE_EQ(preset.filters.size(), 1);
    for (const ValuePointer& value : *preset.filters[0]->m_values) CHECK_FALSE(value->isSetLocally());
}

TEST_CASE("Filters are found by the name of their class or their label, in any case") {
    CHECK_EQ(Read("Filter 'softener' {}").name, "Softener");
    CHECK_EQ(Read("FILTER 'Blur' {}").name, "Softener");
}

TEST_CASE("Keys read from lines of time, handles and value, and rule the frames of the clock") {
    FrameRateClock clock(10.0);
    const Preset preset =
        ReadPresetText("filter 'Edge Detect' { 'Brightness' keys {\n0 0 0 2\n1 0 0 4\n} }", "look", {}, clock);
    const ParameterValue& value = ValueOf(*preset.filters[0]->m_values, "Brightness");
    REQUIRE_EQ(value.keyCount(), 2);
    double number = 0.0;
    for (const std::int32_t frame : {-5, 0, 5, 10, 99}) {
        clock.StandAt(frame);
        value.getDouble(number);
        CHECK_EQ(number, 2.0 + 2.0 * std::clamp(frame, 0, 10) / 10.0);
    }
}

TEST_CASE("A chain has its filters in their order") {
    const Preset preset = Read("chain 'Old film' { filter 'Softener' {} filter 'Film Grain' {} filter 'Softener' {} }");
    CHECK(preset.kind == PresetKind::Chain);
    CHECK_EQ(preset.name, "Old film");
    REQUIRE_EQ(preset.filters.size(), 3);
    CHECK_EQ(preset.filters[1]->Name(), "Film Grain");
    CHECK_EQ(ViewOf(preset.filters, "x").name, "x");
    CHECK(TextOfPreset(ViewOf(preset), {}).starts_with("# A Chalkpane preset\nchain \"Old film\" {\n    filter \""));
}

TEST_CASE("A number that six decimals say exactly is written with them, any other with its digits") {
    const auto filter = FilterNamed("Edge Detect");
    ParameterValue& value = ValueOf(*filter->m_values, "Brightness");
    const auto line = [&](double number) {
        value.setDouble(number);
        return ExactText(value).value_or("none");
    };
    CHECK_EQ(line(1.5), " true   1.500000");
    CHECK_EQ(line(0.1234567), " true 0.1234567");
    CHECK_EQ(line(1e-7), " true 1e-07");
    CHECK_EQ(line(-0.0), " true  -0.000000");
    CHECK_EQ(line(12345678901.0), " true 12345678901.000000");
    CHECK_EQ(line(std::numeric_limits<double>::infinity()), "none");
    CHECK_THROWS_WITH_AS((void)TextOfPreset(ViewOfOne(*filter), {}),
                         "\"Brightness\" holds what is not a number, which a preset cannot say", cli::Error);
    const auto turned = FilterNamed("HueRotate");
    for (const ValuePointer& each : *turned->m_values) each->setFloat(0.1F);
    CHECK_EQ(TextOfPreset(ViewOfOne(*turned), {}).find("0.1000000"),
             std::string::npos);  // six digits are a float's own
}

// Any content in its range for a value; keys on rising frames for the classes that have them.
void Randomise(ParameterValue& value, FrameRateClock& clock, std::mt19937& random) {
    double low = -300.0;
    double high = 300.0;
    value.getParameter()->getRange(low, high);
    const auto real = [&] { return std::uniform_real_distribution<double>(low, high)(random); };
    const auto whole = [&] { return static_cast<std::int32_t>(real()); };
    const auto word = [&random] { return static_cast<std::uint16_t>(random() % 16384); };
    for (int key = 0; key < (value.isAnimated() ? 4 : 1); ++key) {
        clock.StandAt(static_cast<std::int32_t>(random() % 200));
        value.setBoolean(random() % 2 == 0);
        value.setInteger(whole());
        value.setEnumeration(0);
        value.setDouble(real());
        value.setFloat(static_cast<float>(real()));
        value.setDoubleXY(real(), real());
        value.setIntegerXY(clock.currentFrame(), whole());
        value.setColour({word(), word(), word()});
        value.setString("a \"quoted\" } # text\n\twith two lines {");
    }
    ShapePointList graph;
    ShapePoint& point = graph.insert(0.3, 0.7);
    point.setInHandle(real(), real());
    value.setGraph(graph);
    ColourSpline spline;
    spline.addKnot({word(), word(), word()}, 0.25F, 0.1F);
    value.setColourSpline(spline);
    for (std::int32_t i = 0; i < value.keyCount(); ++i) value.keyAt(i)->setHandles(real(), real());
}

TEST_CASE("Every filter with any values and any keys reads back as it was written") {
    constexpr unsigned seed = 1201;
    CAPTURE(seed);
    std::mt19937 random(seed);
    FrameRateClock clock;
    std::vector<std::unique_ptr<Filter>> filters;
    for (const Filter* prototype : FilterRegistry::Instance().Filters()) {
        for (const bool animated : {false, true}) {
            CAPTURE(std::string(prototype->Name()));
            auto filter = prototype->CreateNew();
            filter->MakeValues(animated, &clock, nullptr);
            for (const ValuePointer& value : *filter->m_values) Randomise(*value, clock, random);
            const std::string text = TextOfPreset(ViewOfOne(*filter), {});
            const Preset read = ReadPresetText(text, "look", {}, clock);
            CHECK_EQ(TextOfPreset(ViewOf(read), {}), text);
            for (const std::int32_t frame : {0, 37, 150}) {
                clock.StandAt(frame);
                for (const ValuePointer& value : *filter->m_values) filter->setParameter(value.get());
                for (const ValuePointer& value : *read.filters[0]->m_values) read.filters[0]->setParameter(value.get());
                CHECK(filter->Equals(*read.filters[0]));
            }
            filters.push_back(std::move(filter));
        }
    }
    const std::string all = TextOfPreset(ViewOf(filters, "All"), {});
    CHECK_EQ(TextOfPreset(ViewOf(ReadPresetText(all, "look", {}, clock)), {}), all);
}

TEST_CASE("The exact text of every class of value, plain and with keys, reads back to the same value") {
    constexpr unsigned seed = 1202;
    CAPTURE(seed);
    std::mt19937 random(seed);
    FrameRateClock clock;
    int classes = 0;
    for (int type = 0; type <= 28; ++type) {
        for (const bool animated : {false, true}) {
            CAPTURE(type);
            CAPTURE(animated);
            const ParameterDef definition("Test", "Test", static_cast<ParameterType>(type), 0);
            const ValuePointer value = DataSet::createValue(&definition, animated, &clock);
            const ValuePointer copy = DataSet::createValue(&definition, animated, &clock);
            if (!value || definition.type == ParameterType::font) continue;  // fonts have no service to come from
            Randomise(*value, clock, random);
            value->setRect(Rect(1, 2, 30, 40));
            const std::string text = ExactText(*value).value_or("");
            TextScanner scanner(text);
            REQUIRE(copy->readText(scanner));
            CHECK(scanner.isAtEnd());
            CHECK_EQ(copy->keyCount(), value->keyCount());
            // A logarithm of a number is not always the one of the number that it stands for.
            if (definition.type != ParameterType::logarithmic || !animated)
                CHECK_EQ(ExactText(*copy).value_or(""), text);
            ++classes;
        }
    }
    // Of 29 types, no plain class for 18 to 22 and 27, and not the font; none with keys for 9 to 12, 18 to 21 and 27.
    CHECK_EQ(classes, 29 - 7 + 29 - 9);
}

TEST_CASE("A brush is handed a preset's values and filters, and hands out its own") {
    Preset preset = Read(
        "brush \"Chalk\" {\n \"Brush Size\" true 7\n \"Brush Opacity\" true 0.5\n \"Brush Color\" true true 1 , 2 , 3\n"
        "\"Profile Graph\" { true Point true 0 0; Point true 1 0.5; }\n filter 'Softener' {} }");
    BasicBrush brush("Plain");
    Exchange(brush, preset);
    brush.Update();
    REQUIRE(brush.Source() != nullptr);
    CHECK_EQ(brush.Source()->GetSize(), 15.0);
    CHECK_EQ(brush.Filters().size(), 1);
    CHECK(preset.filters.empty());
    std::string name;
    ValueOf(brush.Values(), "Brush Name").getString(name);
    CHECK_EQ(name, "Chalk");
    Colour colour;
    ValueOf(preset.brush->paint, "Brush Color").getColour(colour);
    CHECK(colour == Colour{1, 2, 3});

    const std::string text = TextOfPreset(ViewOf(brush, &preset.brush->paint), {});
    CHECK(text.starts_with("# A Chalkpane preset\nbrush \"Chalk\" {\n"));
    CHECK_EQ(text.find("\"Brush Name\""), std::string::npos);
    CHECK_NE(text.find("    \"Profile Graph\" {\n        true\n        Point  true   0.000000   0.000000;\n"
                       "        Point  true   1.000000   0.500000;\n    }\n"),
             std::string::npos);
    CHECK_EQ(TextOfPreset(ViewOf(Read(text)), {}), text);
    Exchange(brush, preset);
    brush.Update();
    CHECK_EQ(brush.Source()->GetSize(), 41.0);
}

TEST_CASE("Names of files are told from the preset's folder") {
    const auto read = [](const std::string& name) {
        const Preset preset =
            ReadPresetText("brush 'B' { 'Cutout File' true '" + name + "' }", "look", "/art/looks", clock25);
        FileName out;
        dynamic_cast<FileNameValue&>(ValueOf(preset.brush->brush, "Cutout File")).getFileName(out);
        return std::pair(out.string(), TextOfPreset(ViewOf(preset), "/art/looks"));
    };
    CHECK_EQ(read("leaf.png").first, "\\art\\looks\\leaf.png");
    CHECK_EQ(read("../leaf.png").first, "\\art\\leaf.png");
    CHECK_EQ(read("/else/leaf.png").first, "\\else\\leaf.png");
    CHECK_EQ(read("").first, "");
    CHECK_NE(read("leaf.png").second.find("\"Cutout File\" true \".\\\\leaf.png\""), std::string::npos);
    CHECK_NE(read("../leaf.png").second.find("\"Cutout File\" true \"..\\\\leaf.png\""), std::string::npos);
    CHECK_NE(read("/else/leaf.png").second.find("\"Cutout File\" true \"\\\\else\\\\leaf.png\""), std::string::npos);
    const Preset keyed = ReadPresetText("brush 'B' { 'Cutout File' keys { 0 0 0 'a.png' 1 0 0 '/b.png' } }", "look",
                                        "/art/looks", clock25);
    const auto& names = dynamic_cast<AnimatedFileName&>(ValueOf(keyed.brush->brush, "Cutout File"));
    CHECK_EQ(names.keyValue(0).string(), "\\art\\looks\\a.png");
    CHECK_EQ(names.keyValue(1).string(), "\\b.png");
    CHECK_NE(TextOfPreset(ViewOf(keyed), "/art/looks").find(" \".\\\\a.png\"\n"), std::string::npos);
}

TEST_CASE("A preset that is wrong is refused with its line and the first reason") {
    const std::pair<const char*, const char*> cases[] = {
        {"", "look:1: a preset begins with the word filter, chain or brush and a name in quotes"},
        {"# nothing\n\n", "look:3: a preset begins with the word filter, chain or brush and a name in quotes"},
        {"filtre 'Softener' {}", "look:1: a preset begins with the word filter, chain or brush and a name in quotes"},
        {"filter Softener {}", "look:1: expected the name of the filter in quotes"},
        {"\nfilter 'Softner' {}", "look:2: there is no filter \"Softner\"; did you mean \"Softener\"?"},
        {"filter 'Softener'\n\n", "look:3: expected \"{\" behind the name of filter \"Softener\""},
        {"filter 'Edge Detect' {\n 'Brightnes' true 1 }",
         "look:2: filter \"Edge Detect\" has no parameter \"Brightnes\"; did you mean \"Brightness\"?"},
        {"filter 'Edge Detect' {\n 'Brightness' true\n\n much }",
         "look:4: \"Brightness\" wants a number behind true or false for whether it is set, as in: true 1.5"},
        {"filter 'Edge Detect' {\n 'Brightness' 3 }",
         "look:2: \"Brightness\" wants a number behind true or false for whether it is set, as in: true 1.5"},
        {"filter 'Edge Detect' {\n 'Brightness' true 1.2.3 }",
         "look:2: \"Brightness\" wants a number behind true or false for whether it is set, as in: true 1.5"},
        {"filter 'Edge Detect' {\n 'Brightness' true 10.5 }", "look:2: \"Brightness\": 10.5 lies outside 0 .. 10"},
        {"filter 'Edge Detect' {\n 'Brightness' keys {\n 0 0 0 -1 } }",
         "look:2: \"Brightness\": -1 lies outside 0 .. 10"},
        {"brush 'B' { 'Brush Color' true true 16384 , 0 , 0 }",
         "look:1: \"Brush Color\": 16384 lies outside 0 .. 16383"},
        {"filter 'Edge Detect' {\n 'Brightness' true 1e999 }", "look:2: \"Brightness\" has a number that is too large"},
        {"filter 'Edge Detect' {\n 'Brightness' true 1\n 'Brightness' true 2 }",
         "look:3: \"Brightness\" is given twice, first in line 2"},
        {"filter 'Edge Detect' {\n 'Brightness' { true 1 'Brightness' }",
         "look:2: expected \"}\" behind the value of \"Brightness\""},
        {"filter 'Edge Detect' {\n 'Brightness' keys\n 0 0 0 1 }",
         "look:3: expected \"{\" behind the word keys of \"Brightness\""},
        {"filter 'Edge Detect' {\n 'Brightness' keys { 0 0 0 1\n 1 0 0 @ } }",
         "look:3: \"Brightness\" wants a time, two handles and a number for a key, as in: 0.5 0 0 1.5"},
        {"filter 'Edge Detect' {\n 'Brightness' keys { 0 0 0 1\n 1 0 0 2\n 0.5 0 0 3 } }",
         "look:4: a key of \"Brightness\" stands behind one of a later time"},
        {"filter 'Edge Detect' {\n 'Brightness' keys { 0 0 0 1\n\n",
         "look:4: expected \"}\" or a further key of \"Brightness\""},
        {"filter 'Marble Effect' {\n 'Edges' keys { 0 0 0 1 } }", "look:2: \"Edges\" cannot have keys"},
        {"filter 'Marble Effect' {\n 'Edges' true 300 }", "look:2: \"Edges\" has the choices 0 to 3, and no 300"},
        {"filter 'Edge Detect' {\n Brightness true 1 }",
         "look:2: expected the name of a parameter in quotes or the \"}\" of filter \"Edge Detect\""},
        {"filter 'Edge Detect' {\n filter 'Softener' {} }",
         "look:2: expected the name of a parameter in quotes or the \"}\" of filter \"Edge Detect\""},
        {"chain 'C' {\n 5 }",
         "look:2: expected the name of a parameter in quotes, a filter or the \"}\" of chain \"C\""},
        {"chain 'C' {\n 'Brightness' true 1 }", "look:2: chain \"C\" has no parameter \"Brightness\""},
        {"filter 'Softener' {}\nfilter 'Softener' {}",
         "look:2: the preset has ended, but more follows; several filters go into a chain"},
        {"brush 'B' {\n 'Brush Size' true 1025 }", "look:2: \"Brush Size\": 1025 lies outside 0 .. 1024"},
        {"brush 'B' {\n 'Brush Size' keys { 0 0 0 5\n 1 0 0 -1 } }",
         "look:2: \"Brush Size\": -1 lies outside 0 .. 1024"},
        {"brush 'B' { 'Brush Profile Type' true 'Texure' }",
         "look:1: \"Brush Profile Type\": there is no profile \"Texure\"; did you mean \"Texture\"?"},
        {"brush 'B' {\n 'Brush Size' true 99999999999 }", "look:2: the whole number 99999999999 is too large"},
        {"brush 'B' {\n\n 'Brush Group' true \"\x01\" }", "look:3: this is no text: it holds the byte 1"},
        {"\xff", "look:1: this is no text: it holds the byte 255"},
    };
    for (const auto& [text, reason] : cases) CHECK_EQ(Refusal(text), reason);
}

TEST_CASE("What would not read back is not written") {
    const Preset preset = Read("brush 'B' {}");
    ValueOf(preset.brush->brush, "Brush Group").setString("a\x01");
    CHECK_THROWS_WITH_AS((void)TextOfPreset(ViewOf(preset), {}),
                         "a preset cannot say this: this is no text: it holds the byte 1", cli::Error);
}

TEST_CASE("Numbers and bytes inside comments, strings and words are left alone") {
    CHECK_NOTHROW(Read("brush 'B99999999999' { # 99999999999 \"\n 'Brush Group' true \"-99999999999 \\\" # {\" }"));
    CHECK_NOTHROW(Read("brush 'B' { 'Brush Image Cols' true -2147483648 'Brush Image Rows' true 2147483647 }"));
    CHECK_NE(Refusal("brush 'B' { 'Brush Image Cols' true 2147483648 }"), "");
    CHECK_NE(Refusal("brush 'B' { 'Brush Image Cols' true -2147483649 }"), "");
    CHECK_NOTHROW(Read("brush 'B' { 'Brush Spacing' true 99999999999.0 }"));
}

TEST_CASE("The presets of the manual read, and none is missing") {
    const std::string manual =
        cli::testing::ReadText(std::filesystem::path(CHALKPANE_SOURCE_FOLDER) / "docs/presets.md");
    const std::string fence = "```preset\n";
    int count = 0;
    for (std::size_t start = manual.find(fence); start != std::string::npos; start = manual.find(fence, start)) {
        start += fence.size();
        CHECK_EQ(Refusal(manual.substr(start, manual.find("```", start) - start)), "");
        ++count;
    }
    CHECK_EQ(count, 4);
}

TEST_CASE("No mutation of a preset crashes or hangs its reader") {
    constexpr unsigned seed = 77;
    CAPTURE(seed);
    std::mt19937 random(seed);
    const std::string good =
        "brush \"Chalk\" {\n \"Brush Size\" true 7\n \"Brush Opacity\" keys { 0 0 0 1\n 1 -0.3 0 0.5 }\n"
        "\"Profile Graph\" { true Point true 0 0; Point true 1 0.5; true -0.5 0; true 0 0; }\n"
        "\"Brush Color\" keys { 0 0 0 true 1 2 3 }\n filter 'Softener' {} }";
    REQUIRE_EQ(Refusal(good), "");
    int refused = 0;
    for (int i = 0; i < 5000; ++i) {
        std::string text = good;
        for (unsigned edits = 1 + static_cast<unsigned>(random() % 4); edits > 0; --edits) {
            const auto place = static_cast<std::size_t>(random() % (text.size() - 9));
            switch (random() % 3) {
                case 0:
                    text[place] = static_cast<char>(random());
                    break;
                case 1:
                    text.erase(place, random() % 8);
                    break;
                default:
                    text.insert(place, text.substr(random() % text.size(), random() % 12));
            }
        }
        const std::string reason = Refusal(text);
        if (reason.empty()) continue;
        ++refused;
        REQUIRE(reason.starts_with("look:"));
    }
    CHECK_GT(refused, 1000);
}

}  // namespace
