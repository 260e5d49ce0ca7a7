#include <doctest/doctest.h>

#include <limits>
#include <random>

#include "chalkpane/parameters/animation/animated_file_name.h"
#include "chalkpane/parameters/animation/animated_map_xy.h"
#include "chalkpane/parameters/animation/animated_position.h"
#include "chalkpane/parameters/animation/colour_spline.h"
#include "chalkpane/parameters/compound_values.h"
#include "chalkpane/parameters/data_set.h"
#include "chalkpane/parameters/font_value.h"
#include "chalkpane/parameters/graph_value.h"
#include "chalkpane/parameters/scalar_values.h"
#include "chalkpane/parameters/string_value.h"
#include "tests/chalkpane/parameters/frame_clock.h"
#include "tests/chalkpane/parameters/recording_undo_stack.h"

namespace {

using namespace chalkpane;

const FrameClock frames;
constexpr const ParameterDef* undeclared = nullptr;

// Keeps what a sink is given, as one that writes would.
class KeepingSink final : public TextSink {
public:
    TextSink& operator<<(std::string_view piece) override {
        kept += piece;
        return *this;
    }
    TextSink& operator<<(std::int32_t number) override { return *this << formatNumber(number); }
    TextSink& operator<<(double number) override { return *this << formatNumber(number); }
    std::string kept;
};

std::string Text(const ParameterValue& value) {
    std::string text = "|";
    value.appendText(text);
    return text + "|";
}

std::string StreamText(const ParameterValue& value) {
    KeepingSink sink;
    value.writeToStream(sink);
    return "|" + sink.kept + "|";
}

bool Read(ParameterValue& value, const std::string& text) {
    TextScanner scanner(text);
    return value.readText(scanner);
}

TEST_CASE("The text of each plain class, set and unset") {
    BooleanValue flag(true);
    CHECK_EQ(Text(flag), "| false true|");
    flag.store(true, true);
    CHECK_EQ(Text(flag), "| true true|");
    CHECK_EQ(Text(DoubleValue(1.5)), "| false   1.500000|");
    CHECK_EQ(Text(FloatValue(-0.25f)), "| false  -0.250000|");
    CHECK_EQ(Text(IntegerValue(-12)), "| false -12|");
    CHECK_EQ(Text(EnumerationValue(std::uint8_t{255})), "| false 255|");
    IntegerXYValue pair(3, -4);
    pair.store({3, -4}, true);
    CHECK_EQ(Text(pair), "| true 3 -4|");
    CHECK_EQ(Text(DoubleXYValue(1.0, -2.0)), "| false   1.000000  -2.000000|");
    CHECK_EQ(Text(RectValue(Rect(1, 2, 3, 4))), "| false 1 4 3 2|");  // left, top, right, bottom
    StringValue string(undeclared);
    string.store("say \"hi\"", true);
    CHECK_EQ(Text(string), "| true \"say \\\"hi\\\"\"|");
    CHECK_EQ(Text(LayerValue("Top", nullptr)), "| false \"Top\"|");
    CHECK_EQ(Text(ColourValue(Colour::fromIndex(3))), "| false true 16383 , 16383 , 16383|");
    CHECK_EQ(Text(FileNameValue(FileName("C:/a"))), "| false \"C:\\\\a\"|");
}

TEST_CASE("The text of a font tells what the font answers") {
    class Chalk final : public Font {
    public:
        void getDescription(bool& bold, bool& italic, std::string& name) const override {
            bold = true;
            italic = false;
            name = "Chalk";
        }
    };
    Chalk chalk;
    FontValue value(&chalk);
    CHECK_EQ(Text(value), "| false  \"Chalk\" true false|");
    CHECK_EQ(Text(FontValue(undeclared)), "| false |");
    CHECK_FALSE(Read(value, " true \"Chalk\" true false"));  // there is no font service
    CHECK_EQ(value.stored(), &chalk);
    CHECK(value.isSetLocally());
}

TEST_CASE("The text of a graph has a line per point and per handle, with margins in the stream") {
    GraphValue value(undeclared);
    value.setGraph(ShapePointList());
    CHECK_EQ(Text(value), "| true\nPoint  true   0.000000   0.000000;\nPoint  true   1.000000   1.000000;\n|");
    GraphValue empty(undeclared);
    CHECK(Read(empty, "true"));
    CHECK_EQ(Text(empty), "| true|");  // no points, no line
    value.list()[1].setInHandle(0.5, 1.0);
    CHECK_EQ(Text(value),
             "| true\nPoint  true   0.000000   0.000000;\nPoint  true   1.000000   1.000000;\n"
             " true  -0.500000   0.000000;\n true   0.000000   0.000000;\n|");
    CHECK_EQ(StreamText(value),
             "| true\n\t\t\tPoint  true   0.000000   0.000000;\n\t\t\tPoint  true   1.000000   1.000000;\n"
             "\t\t\t true  -0.500000   0.000000;\n\t\t\t true   0.000000   0.000000;\n|");
}

TEST_CASE("The text of a colour spline has a line per knot") {
    ColourSpline spline;
    spline.addKnot(Colour{1, 2, 3}, 0.25f);
    spline.addKnot(Colour{4, 5, 6}, 1.0f, 0.75f);
    CHECK_EQ(Text(ColourSplineValue(spline)),
             "| false 2 true \n  0.250000 : 1 , 2 , 3 ,   0.500000\n  1.000000 : 4 , 5 , 6 ,   0.750000|");
    CHECK_EQ(Text(ColourSplineValue(undeclared)), "| false 0 true |");
}

TEST_CASE("Names are told from the base directory where that is asked for") {
    FileName::setBaseDirectory("C:\\work\\show\\");
    FileNameValue name(FileName("C:\\work\\show\\a.png"));
    CHECK_EQ(Text(name), "| false \"C:\\\\work\\\\show\\\\a.png\"|");
    name.setRelative(true);
    CHECK_EQ(Text(name), "| false \".\\\\a.png\"|");
    CHECK(Read(name, " true '..\\\\b.png'"));
    CHECK_EQ(name.stored().string(), "C:\\work\\b.png");
    name.setRelative(false);
    CHECK(Read(name, " true '..\\\\b.png'"));
    CHECK_EQ(name.stored().string(), "..\\b.png");
    PathValue path("C:\\work\\show\\art\\");
    CHECK_EQ(Text(path), "| false \".\\\\art\\\\\"|");
    CHECK(Read(path, " true '.\\\\x'"));
    CHECK_EQ(path.stored(), "C:\\work\\show\\x");
    FileName::setBaseDirectory("");
}

TEST_CASE("Reading takes the set word and then the value, past the setter") {
    RecordingUndoStack stack;
    IntegerValue parent(7);
    IntegerValue value(undeclared);
    value.setParent(&parent);
    CHECK(Read(value, "true 7"));
    CHECK(value.isSetLocally());  // the setter would have found it inherited
    CHECK_EQ(stack.size(), 0);
    CHECK(Read(value, "FALSE -3"));
    CHECK_FALSE(value.isSetLocally());
    CHECK_EQ(value.stored(), -3);
}

TEST_CASE("A value that fails half-way keeps what was stored so far") {
    DoubleXYValue value(1.0, 2.0);
    CHECK_FALSE(Read(value, "true 5.5 word"));
    CHECK(value.isSetLocally());
    CHECK(value.stored() == DoublePair{5.5, 2.0});
    CHECK_FALSE(Read(value, "word"));
    CHECK(value.isSetLocally());
    ColourValue paint(Colour{1, 2, 3});
    CHECK_FALSE(Read(paint, "true true 9 , 8 7"));
    CHECK(paint.stored() == Colour{9, 8, 3});
    RectValue rect(Rect(0, 0, 0, 0));
    CHECK_FALSE(Read(rect, "true 1 4 3"));
    CHECK(rect.stored() == Rect(1, 0, 3, 4));
}

TEST_CASE("A colour in 8 bits widens") {
    ColourValue paint(undeclared);
    CHECK(Read(paint, " true false 255 , 128 , 3"));
    // 255 * 64 + 63, 128 * 64 + 32, 3 * 64 + 0
    CHECK(paint.stored() == Colour{16383, 8224, 192});
    CHECK(Read(paint, " true true 255 , 128 , 70000"));
    CHECK(paint.stored() == Colour{255, 128, 70000 - 65536});
}

TEST_CASE("A real is read from a whole number, a whole number not from a real") {
    DoubleValue number(undeclared);
    CHECK(Read(number, "true 7"));
    CHECK_EQ(number.stored(), 7.0);
    IntegerValue whole(undeclared);
    CHECK_FALSE(Read(whole, "true 7.0"));
}

TEST_CASE("A knot without a midpoint takes the default, and still counts when the text ends there") {
    ColourSplineValue value(undeclared);
    CHECK(Read(value, "true 2 true 0.5 : 1 , 2 , 3 1 : 4 , 5 , 6"));
    REQUIRE_EQ(value.stored().knotCount(), 2);
    CHECK_EQ(value.stored().knotMidpoint(1), 0.5f);
    CHECK_FALSE(value.stored().midpointsGiven());
    CHECK(Read(value, "true 1 true 0.5 : 1 , 2 , 3 , 0.25"));
    CHECK(value.stored().midpointsGiven());
    CHECK_EQ(value.stored().knotMidpoint(0), 0.25f);
    CHECK_FALSE(Read(value, "true 1000000000 true 0.5 : 1 , 2 , 3"));
    CHECK_EQ(value.stored().knotCount(), 1);
    CHECK(Read(value, "true -5 true"));
    CHECK_EQ(value.stored().knotCount(), 0);
}

TEST_CASE("A graph reads its points; without handles both lie on the point") {
    GraphValue value(undeclared);
    CHECK(Read(value, "true Point true 0 0.5; Point true 1 1; true -0.5 0; false 0.25 0; end"));
    REQUIRE_EQ(value.stored().size(), 2);
    CHECK(value.stored()[0].getInHandle() == DoublePair{0.0, 0.5});
    CHECK(value.stored()[0].getOutHandle() == DoublePair{0.0, 0.5});
    CHECK(value.stored()[1].getInHandle() == DoublePair{0.5, 1.0});
    CHECK(value.stored()[1].getOutHandle() == DoublePair{1.25, 1.0});
    CHECK_FALSE(Read(value, "true Point true 0 0.5 Point"));
    CHECK_FALSE(Read(value, "true Point true 0 0.5; true 1 1; word"));
    CHECK(Read(value, "true"));
    CHECK_EQ(value.stored().size(), 0);
}

TEST_CASE("A key's text is its head and its value") {
    AnimatedDouble number(nullptr, false, &frames);
    number.addKeyDouble(2, 10.0);
    number.keyAt(0)->setHandles(0.25, -0.25);
    CHECK_EQ(Text(number), "|\n  2.000000   0.250000  -0.250000  10.000000|");
    CHECK_EQ(StreamText(number), "|\n\t\t\t\t  2.000000   0.250000  -0.250000  10.000000|");
    const std::string head = "|\n  0.000000   0.000000   0.000000 ";
    AnimatedInt whole(nullptr, false, &frames);
    whole.setIntegerXY(0, -3);
    CHECK_EQ(Text(whole), head + "-3|");
    AnimatedBoolean flag(nullptr, false, &frames);
    flag.addKeyBoolean(0, true);
    CHECK_EQ(Text(flag), head + "true|");
    AnimatedFloat narrow(nullptr, false, &frames);
    narrow.addKeyDouble(0, 0.5);
    CHECK_EQ(Text(narrow), head + "  0.500000|");
    AnimatedIntXY pair(nullptr, false, &frames);
    pair.addKeyIntegerXY(0, 1, -2);
    CHECK_EQ(Text(pair), head + "1 -2|");
    AnimatedMapXY map(nullptr, false, &frames);
    map.addKeyDoubleXY(0, 1.0, -2.0);
    CHECK_EQ(Text(map), head + "  1.000000  -2.000000|");
    AnimatedColour paint(nullptr, false, &frames);
    paint.addKeyColour(0, {1, 2, 3});
    CHECK_EQ(Text(paint), head + "true 1 2 3|");
    AnimatedFileName name(nullptr, false, &frames);
    name.addKey(0, FileName("a/b"));
    CHECK_EQ(Text(name), head + " \"a\\\\b\"|");
    AnimatedLogDouble log(nullptr, false, &frames);
    log.addKeyDouble(0, 100.0);
    CHECK_EQ(Text(log), head + "100.000000|");
}

TEST_CASE("A position writes its handles, or a comma when they lie on the point") {
    AnimatedPosition position(nullptr, false, &frames);
    position.addKey(0, {{1.0, 2.0}, {3.0, 4.0}, {5.0, 6.0}});
    const std::string head = "\n  0.000000   0.000000   0.000000 ";
    CHECK_EQ(Text(position), "|" + head + "  1.000000   2.000000   3.000000   4.000000   5.000000   6.000000|");
    AnimatedPosition bare(nullptr, false, &frames);
    bare.addKeyDoubleXY(0, 1.0, 2.0);
    CHECK_EQ(Text(bare), "|" + head + "  1.000000   2.000000 ,   2.000000   1.000000   2.000000|");
    CHECK_EQ(StreamText(bare), "|\n\t\t\t\t" + head.substr(1) + "  1.000000   2.000000 ,|");
}

TEST_CASE("What a position writes with bare handles reads back from the stream's text and not from the string's") {
    AnimatedPosition bare(nullptr, false, &frames);
    bare.addKeyDoubleXY(0, 1.0, 2.0);
    bare.addKeyDoubleXY(10, 3.0, 4.0);
    KeepingSink sink;
    bare.writeToStream(sink);
    AnimatedPosition read(nullptr, false, &frames);
    CHECK(Read(read, sink.kept));
    CHECK_EQ(Text(read), Text(bare));
    std::string text;
    bare.appendText(text);
    CHECK_FALSE(Read(read, text));  // the numbers behind the comma are taken for a key
    CHECK_NE(Text(read), Text(bare));
}

TEST_CASE("The word nan four times stands for handles on the point") {
    AnimatedPosition position(nullptr, false, &frames);
    CHECK(Read(position, "0 0 0 1 2 nan nan NaN nan 10 0 0 3 4 ,"));
    REQUIRE_EQ(position.keyCount(), 2);
    CHECK(position.keyValue(0).in == DoublePair{1.0, 2.0});
    CHECK(position.keyValue(1).out == DoublePair{3.0, 4.0});
    CHECK_FALSE(Read(position, "0 0 0 1 2 nan nan nan 3"));
    CHECK_EQ(position.keyCount(), 0);
}

TEST_CASE("A smooth point writes a word in place of its handles and has them computed anew on reading") {
    AnimatedPosition3d path(nullptr, false, &frames);
    path.addKeyDoubleXY(0, 0.0, 0.0);
    path.addKeyDoubleXY(10, 6.0, 0.0);
    path.addKeyDoubleXY(20, 12.0, 6.0);
    path.setSmooth(0);
    const std::string zeros = "   0.000000   0.000000 ";
    CHECK_EQ(Text(path), "|\n  0.000000" + zeros + "  0.000000   0.000000 smooth \n 10.000000" + zeros +
                             "  6.000000   0.000000 smooth \n 20.000000" + zeros + " 12.000000   6.000000 smooth |");
    AnimatedPosition3d read(nullptr, false, &frames);
    std::string text;
    path.appendText(text);
    CHECK(Read(read, text));
    CHECK_EQ(Text(read), Text(path));
    for (std::int32_t i = 0; i < 3; ++i) {
        CHECK(read.keyValue(i).in == path.keyValue(i).in);
        CHECK(read.keyValue(i).out == path.keyValue(i).out);
    }
    CHECK(Read(read, "0 0 0 1 2 5 6 7 8"));
    CHECK_FALSE(read.keyValue(0).smooth);
    CHECK(read.keyValue(0).out == DoublePair{7.0, 8.0});
}

TEST_CASE("A key list ends at a token that does not read as a number, and fails on a malformed token or a broken key") {
    AnimatedDouble value(nullptr, false, &frames);
    CHECK(Read(value, "0 0 0 1 10 0 0 2 ; rest"));
    CHECK_EQ(value.keyCount(), 2);
    CHECK(Read(value, ""));
    CHECK_EQ(value.keyCount(), 0);
    CHECK_FALSE(Read(value, "0 0 0 1 @"));
    CHECK_EQ(value.keyCount(), 1);
    CHECK_FALSE(Read(value, "0 0 0 1 1.2.3 0 0 2"));
    CHECK_FALSE(Read(value, "0 0 0 1 10 0"));
    CHECK_EQ(value.keyCount(), 1);
    CHECK_FALSE(Read(value, "0 0 0 true"));
    CHECK_EQ(value.keyCount(), 0);
    bool ended = false;
    TextScanner scanner("0 0 0 1 )");
    CHECK(value.readKey(scanner, ended));
    CHECK_FALSE(value.readKey(scanner, ended));
    CHECK(ended);
}

TEST_CASE("An animated colour in 8 bits widens") {
    AnimatedColour paint(nullptr, false, &frames);
    CHECK(Read(paint, "0 0 0 false 255 128 3"));
    CHECK(paint.keyValue(0) == Colour{16383, 8224, 192});
}

TEST_CASE("Text of keys that are not there is nothing") {
    const AnimatedDouble value(nullptr, false, &frames);
    std::string text;
    value.appendKeyText(text, 0);
    value.appendKeyText(text, -1);
    KeepingSink sink;
    value.writeKeyToStream(sink, 0);
    CHECK(text.empty());
    CHECK(sink.kept.empty());
}

TEST_CASE("The sink as it is swallows everything") {
    TextSink sink;
    CHECK_EQ(&(sink << std::string_view("a") << std::int32_t{1} << 2.0), &sink);
}

TEST_CASE("NaN does not read back") {
    CHECK_FALSE(Read(*makeValue<DoubleValue>(0.0), " true        nan"));
    CHECK_FALSE(Read(*makeValue<DoubleValue>(0.0), " true        inf"));
}

// Random contents for every class; the seed is printed with a failure.
class Dice {
public:
    explicit Dice(unsigned seed) : random(seed) {}
    std::int32_t below(std::int32_t limit) {
        return static_cast<std::int32_t>(random() % static_cast<unsigned>(limit));
    }
    std::int32_t whole() { return static_cast<std::int32_t>(random()); }
    double real() { return std::uniform_real_distribution<double>(-1e4, 1e4)(random); }
    Colour colour() {
        return {static_cast<std::uint16_t>(random()), static_cast<std::uint16_t>(random()),
                static_cast<std::uint16_t>(random())};
    }
    std::string text() {
        std::string made;
        for (std::int32_t i = below(20); i > 0; --i) made += static_cast<char>(1 + below(254));
        return made;
    }

private:
    std::mt19937 random;
};

void Randomise(ParameterValue& value, Dice& dice) {
    value.setBoolean(dice.below(2) == 0);
    value.setInteger(dice.whole());
    value.setEnumeration(static_cast<std::uint8_t>(dice.below(256)));
    value.setDouble(dice.real());
    value.setIntegerXY(dice.whole(), dice.whole());
    value.setDoubleXY(dice.real(), dice.real());
    value.setColour(dice.colour());
    value.setRect({dice.whole(), dice.whole(), dice.whole(), dice.whole()});
    value.setString(dice.text());
    if (auto* name = dynamic_cast<FileNameValue*>(&value)) name->setFileName(FileName(dice.text()));
    ShapePointList list;
    list.clear();
    ColourSpline spline;
    for (std::int32_t i = dice.below(5); i > 0; --i) {
        ShapePoint& point = list.append();
        point.setPoint(dice.real(), dice.real());
        point.setInHandle(dice.real(), dice.real());
        point.setOutHandle(dice.real(), dice.real());
        spline.addKnot(dice.colour(), static_cast<float>(dice.real()), static_cast<float>(dice.real()));
    }
    value.setGraph(list);
    value.setColourSpline(spline);
    if (dice.below(2) == 0) value.clearSet();
}

TEST_CASE("What a plain value writes reads back and is written the same") {
    constexpr unsigned seed = 1871;
    CAPTURE(seed);
    Dice dice(seed);
    for (const int type : {0, 1, 2, 3, 4, 5, 7, 8, 10, 11, 12, 15, 16, 17, 28}) {
        CAPTURE(type);
        const ParameterDef definition("Test", "Test", static_cast<ParameterType>(type), 0);
        for (int i = 0; i < 500; ++i) {
            const ValuePointer value = DataSet::createValue(&definition, false, nullptr);
            const ValuePointer copy = DataSet::createValue(&definition, false, nullptr);
            Randomise(*value, dice);
            std::string text;
            value->appendText(text);
            TextScanner scanner(text);
            REQUIRE(copy->readText(scanner));
            REQUIRE(scanner.isAtEnd());
            REQUIRE_EQ(Text(*copy), Text(*value));
            REQUIRE_EQ(copy->isSetLocally(), value->isSetLocally());
        }
    }
}

TEST_CASE("What an animated value writes reads back and is written the same") {
    constexpr unsigned seed = 1872;
    CAPTURE(seed);
    Dice dice(seed);
    FrameClock clock;
    for (const int type : {0, 1, 2, 3, 4, 5, 6, 13, 14, 16, 17, 22}) {
        CAPTURE(type);
        const ParameterDef definition("Test", "Test", static_cast<ParameterType>(type), 0);
        for (int i = 0; i < 200; ++i) {
            const ValuePointer value = DataSet::createValue(&definition, true, &clock);
            const ValuePointer copy = DataSet::createValue(&definition, true, &clock);
            for (std::int32_t k = dice.below(5); k > 0; --k) {
                clock.current = dice.below(1000);
                Randomise(*value, dice);
                if (auto* name = dynamic_cast<AnimatedFileName*>(value.get())) name->setFileName(FileName(dice.text()));
                const PathPoint shaped{
                    {dice.real(), dice.real()}, {dice.real(), dice.real()}, {dice.real(), dice.real()}};
                if (auto* path = dynamic_cast<AnimatedPosition*>(value.get())) path->addKey(clock.current, shaped);
                if (auto* path = dynamic_cast<AnimatedPosition3d*>(value.get()))
                    path->addKeyWithHandles(clock.current, {shaped, dice.below(2) == 0});
            }
            // Corners on their own point are what does not read back.
            auto* path = dynamic_cast<AnimatedPosition3d*>(value.get());
            for (std::int32_t k = 0; path != nullptr && k < path->keyCount(); ++k)
                if (!path->keyValue(k).smooth)
                    path->addKeyWithHandles(path->keyAt(k)->frame(clock), {{{0, 0}, {1, 1}, {2, 2}}, false});
            for (std::int32_t k = 0; k < value->keyCount(); ++k)
                value->keyAt(k)->setHandles(dice.below(3) - 1, dice.below(3) - 1);
            std::string text;
            value->appendText(text);
            TextScanner scanner(text);
            REQUIRE(copy->readText(scanner));
            REQUIRE(scanner.isAtEnd());
            REQUIRE_EQ(Text(*copy), Text(*value));
        }
    }
}

TEST_CASE("No text crashes or hangs a reader") {
    constexpr unsigned seed = 1873;
    CAPTURE(seed);
    std::mt19937 random(seed);
    // The pieces that texts are made of, so that readers get far into them.
    const std::string_view pieces[] = {
        " true", " false",  " 1", " -0.5", "Point", ";", ",", " : ",          "\"a\"",     "\"",   "\\", "#",     "\n",
        "nan ",  "smooth ", " 3", "1e99",  ".",     "-", "{", " 99999999999", "true true", "\xff", "@",  "0 0 0 "};
    std::vector<std::unique_ptr<ParameterDef>> definitions;
    std::vector<ValuePointer> values;
    for (const bool animated : {false, true}) {
        for (int type = 0; type <= 28; ++type) {
            definitions.push_back(
                std::make_unique<ParameterDef>("Test", "Test", static_cast<ParameterType>(type), std::uint8_t{0}));
            ValuePointer value = DataSet::createValue(definitions.back().get(), animated, &frames);
            if (value) values.push_back(std::move(value));
        }
    }
    std::size_t read = 0;
    for (int i = 0; i < 1000000; ++i) {
        std::string text;
        for (unsigned n = random() % 16; n > 0; --n) {
            const auto pick = static_cast<unsigned>(random());
            if (pick % 4 == 0) {
                text += static_cast<char>(pick >> 8);
            } else {
                text += pieces[(pick >> 8) % std::size(pieces)];
            }
        }
        TextScanner scanner(std::move(text));
        scanner.setEscapes(i % 3 != 0);
        scanner.setPathFlavour(static_cast<PathFlavour>(i % 3));
        scanner.setConvertText(i % 2 == 0);
        read += values[static_cast<std::size_t>(i) % values.size()]->readText(scanner);
    }
    CHECK_GT(read, 0);
}

}  // namespace
