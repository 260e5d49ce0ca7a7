#include "telestrator/journal/journal_record.h"

#include <doctest/doctest.h>

#include <limits>
#include <string>
#include <utility>

#include "tests/telestrator/journal/random_session.h"

namespace chalkpane {
namespace {

using testing::CanvasOf;
using testing::Draw;
using testing::PixelsOf;
using testing::SessionMaker;

class RecordList final : public JournalSink {
public:
    void Write(const JournalRecord& record) noexcept override { lines.push_back(RecordText(record)); }
    std::vector<std::string> lines;
};

std::string ErrorOf(const std::string& line) {
    const ParsedRecord parsed = ParseRecord(line);
    CHECK(parsed.record.has_value() == parsed.error.empty());
    return parsed.error;
}

// A plain click, as it is written.
const std::string settings = "set 0 5 10 4026531840 0 1 0 1 50 1 30 20 0 1";
const std::string click = "7 stroke 1 raw 91 91 109 109 " + settings + " paint 5 0 0 0 p 0 100 100 1 r 1 100 100 1 end";

TEST_CASE("a stroke's record says where it lies, what was set, what the hand did, and with which brush") {
    RecordList list;
    JournaledTelestrator telestrator(&list);
    telestrator.Field({});
    telestrator.Press({}, {100, 100});
    telestrator.Field({});
    telestrator.Release({}, {100, 100});
    REQUIRE_EQ(list.lines.size(), 1);
    // The first press comes after one field; the brush has a radius of 5, and 4 pixels for roundings.
    const std::string wanted =
        "2 stroke 1 raw 91 91 109 109 " + settings + " paint 5 0 0 0 p 1 100 100 1 r 2 100 100 1 end";
    CHECK_EQ(list.lines.front(), wanted);
}

TEST_CASE("a pen's pressure is the hand's, and what is painted stays at full pressure") {
    RecordList list;
    JournaledTelestrator telestrator(&list);
    JournaledTelestrator plain;
    for (JournaledTelestrator* each : {&telestrator, &plain}) each->Field({});
    telestrator.Press({}, {100, 100}, 0.25);
    telestrator.Field({});
    telestrator.Release({}, {100, 100}, 0.5);
    plain.Press({}, {100, 100});
    plain.Field({});
    plain.Release({}, {100, 100});
    REQUIRE_EQ(list.lines.size(), 1);
    const std::string wanted = "2 stroke 1 raw 91 91 109 109 " + settings +
                               " p 1 100 100 0.25 r 2 100 100 0.5 instead paint 5 0 0 0 b 100 100 1 e 100 100 1 end";
    CHECK_EQ(list.lines.front(), wanted);
    CHECK(CanvasOf(telestrator) == CanvasOf(plain));
    const ParsedRecord parsed = ParseRecord(wanted);
    REQUIRE(parsed.record);
    CHECK_EQ(RecordText(*parsed.record), wanted);
    JournaledTelestrator read;
    read.Field({});
    REQUIRE(read.Apply(*parsed.record));
    CHECK(CanvasOf(read) == CanvasOf(plain));
}

TEST_CASE("whatever pressure a pen tells, what is written of it can be read") {
    const double nothing = std::numeric_limits<double>::quiet_NaN();
    const double endless = std::numeric_limits<double>::infinity();
    for (const auto& [told, kept] :
         {std::pair{nothing, 1.0}, {endless, 1.0}, {-endless, 0.0}, {-0.5, 0.0}, {1e300, 1.0}}) {
        RecordList list;
        JournaledTelestrator telestrator(&list);
        telestrator.Field({});
        telestrator.Press({}, {100, 100}, told);
        telestrator.Release({}, {100, 100}, told);
        REQUIRE_EQ(list.lines.size(), 1);
        const ParsedRecord parsed = ParseRecord(list.lines.front());
        REQUIRE(parsed.record);
        for (const HandSample& sample : parsed.record->strokes.front()->hand) CHECK_EQ(sample.pressure, kept);
    }
}

TEST_CASE("what is read from a record is written as the same record") {
    SessionMaker maker(71);
    RecordList list;
    JournaledTelestrator telestrator(&list);
    telestrator.Field({});
    for (int i = 0; i < 16; ++i) Draw(telestrator, maker.Stroke());
    REQUIRE(telestrator.MoveStroke(2, 3.25, -7.125));
    REQUIRE(telestrator.Remove(3));
    telestrator.Undo();
    telestrator.Redo();
    telestrator.Recolour(1, 0xFF102030U);
    telestrator.Clear();
    std::vector<SharedStroke> none;
    telestrator.Insert(none, InkDrawing::Recall::InPlace);
    REQUIRE(list.lines.size() > 16);
    for (const std::string& line : list.lines) {
        const ParsedRecord parsed = ParseRecord(line);
        CHECK_EQ(parsed.error, "");
        REQUIRE(parsed.record);
        CHECK_EQ(RecordText(*parsed.record), line);
    }
}

TEST_CASE("records bring back the canvas of each moment, byte for byte, and can be edited on") {
    for (const std::uint32_t seed : {72U, 73U}) {
        SessionMaker maker(seed);
        RecordList list;
        JournaledTelestrator first(&list);
        JournaledTelestrator second;
        first.Field({});
        second.Field({});
        std::size_t applied = 0;
        const auto follow = [&] {
            for (; applied < list.lines.size(); ++applied) {
                const ParsedRecord parsed = ParseRecord(list.lines[applied]);
                REQUIRE(parsed.record);
                REQUIRE(second.Apply(*parsed.record));
            }
            CAPTURE(seed);
            REQUIRE(CanvasOf(second) == CanvasOf(first));
        };
        for (int i = 0; i < 12; ++i) {
            Draw(first, maker.Stroke());
            const auto number = static_cast<std::uint32_t>(maker.Number(1, 12));
            if (i % 3 == 1) first.MoveStroke(number, maker.Real(-80, 80), maker.Real(-80, 80));
            if (i % 4 == 2) first.Remove(number);
            if (i % 5 == 3) first.Undo();
            follow();
        }
        std::vector<SharedStroke> strokes;
        for (const InkDrawing::Stroke& stroke : first.Drawing()->Strokes()) strokes.push_back(stroke.ink);
        first.Insert(strokes, InkDrawing::Recall::Over);
        follow();
        while (first.Undo()) follow();
    }
}

TEST_CASE("a record's error names the word, its place and what was wanted") {
    CHECK_EQ(ErrorOf(click), "");
    CHECK_EQ(ErrorOf(""), "word 1, \"\", is not a field");
    CHECK_EQ(ErrorOf("-1 undo"), "word 1, \"-1\", is not a field");
    CHECK_EQ(ErrorOf("7 stork 1"), "word 2, \"stork\", is not what a record can be");
    CHECK_EQ(ErrorOf("7 remove 0"), "word 3, \"0\", is not a stroke's number");
    CHECK_EQ(ErrorOf("7 remove 4294967296"), "word 3, \"4294967296\", is not a stroke's number");
    CHECK_EQ(ErrorOf("7 undo now"), "word 3, \"now\", is not expected: the record is over");
    CHECK_EQ(ErrorOf("7 stroke 1 square"), "word 4, \"square\", is not what a stroke can be");
    CHECK_EQ(ErrorOf("7 recall under 0"), "word 3, \"under\", is not a way to recall");
    CHECK_EQ(ErrorOf("7 recall over 100001"), "word 4, \"100001\", is not a number of strokes, 0 to 100000");
}

// click with `from` replaced by `to`.
std::string Altered(const std::string& from, const std::string& to) {
    std::string line = click;
    return line.replace(line.find(from), from.size(), to);
}

TEST_CASE("a stroke's numbers are held to what can be") {
    CHECK_EQ(ErrorOf(Altered("91 91", "91 1024")),
             "word 6, \"1024\", is not a side of the stroke's rectangle, -1 to 1023");
    CHECK_EQ(ErrorOf(Altered("p 0 100", "p 0 nan")), "word 31, \"nan\", is not a position on the canvas");
    CHECK_EQ(ErrorOf(Altered("p 0 100", "p 0 1e300")), "word 31, \"1e300\", is not a position on the canvas");
    CHECK_EQ(ErrorOf(Altered("p 0 100", "p 0 1x")), "word 31, \"1x\", is not a position on the canvas");
    CHECK_EQ(ErrorOf(Altered("p 0", "p -1")), "word 30, \"-1\", is not a field");
    CHECK_EQ(ErrorOf(Altered("100 1 r", "100 1.5 r")), "word 33, \"1.5\", is not a pressure, 0 to 1");
    CHECK_EQ(ErrorOf(Altered("100 1 r", "100 -0.1 r")), "word 33, \"-0.1\", is not a pressure, 0 to 1");
    CHECK_EQ(ErrorOf(Altered("100 1 r", "100 nan r")), "word 33, \"nan\", is not a pressure, 0 to 1");
    CHECK_EQ(ErrorOf(Altered("100 1 r", "100 1e999 r")), "word 33, \"1e999\", is not a pressure, 0 to 1");
    CHECK_EQ(ErrorOf(Altered("paint 5 0", "paint 5 16384")),
             "word 26, \"16384\", is not a part of a colour, 0 to 16383");
    CHECK_EQ(ErrorOf(Altered("set 0 5 10 4026531840 0", "set 0 5 10 4026531840 2")), "word 14, \"2\", is not 0 or 1");
    CHECK_EQ(ErrorOf(Altered(" 1 paint", " inf paint")), "word 23, \"inf\", is not an aspect");
}

TEST_CASE("a stroke needs its settings, its brush, its press and its end") {
    CHECK_EQ(ErrorOf(Altered(settings + " ", "")), "word 14, \"p\", is not preceded by settings");
    CHECK_EQ(ErrorOf(Altered("paint 5 0 0 0 ", "")), "word 33, \"end\", is not preceded by a brush");
    CHECK_EQ(ErrorOf(Altered("p 0", "m 0")), "word 29, \"m\", is not a press");
    CHECK_EQ(ErrorOf(Altered(" end", "")), "word 38, \"\", is not a word of a stroke");
    CHECK_EQ(ErrorOf("7 stroke 1 raw 0 0 1 1 end"), "word 8, \"end\", is not a press: a stroke has at least one");
    CHECK_EQ(ErrorOf(Altered(" end", " instead b 1 1 1 end")), "word 40, \"1\", is not preceded by a brush");
}

// Whatever comes of such a line can be painted: nothing hangs, overruns or throws.
TEST_CASE("lines with words changed, doubled and cut off are refused or can be painted") {
    SessionMaker maker(74);
    RecordList list;
    JournaledTelestrator telestrator(&list);
    telestrator.Field({});
    for (int i = 0; i < 6; ++i) Draw(telestrator, maker.Stroke());
    const std::vector<std::string> words = {"-1", "0",    "1e9",    "2147483647", "nan", "p",      "m",     "r",    "l",
                                            "b",  "e",    "became", "instead",    "set", "erase",  "end",   "line", "",
                                            "c",  "-2e9", "recall", "over",       "16",  "stroke", "circle"};
    int accepted = 0;
    for (int i = 0; i < 1500; ++i) {
        std::string line =
            list.lines[static_cast<std::size_t>(maker.Number(0, static_cast<int>(list.lines.size()) - 1))];
        for (int edits = maker.Number(1, 3); edits > 0; --edits) {
            const auto at = static_cast<std::size_t>(maker.Number(0, static_cast<int>(line.size())));
            const std::size_t begin = line.rfind(' ', at) == std::string::npos ? 0 : line.rfind(' ', at) + 1;
            const std::string& word =
                words[static_cast<std::size_t>(maker.Number(0, static_cast<int>(words.size()) - 1))];
            if (maker.Number(0, 5) == 0) {
                line.resize(at);
            } else {
                line.replace(begin, line.find(' ', begin) - begin, word);
            }
        }
        const ParsedRecord parsed = ParseRecord(line);
        if (!parsed.record) continue;
        ++accepted;
        if (accepted % 8 == 0) telestrator.Apply(*parsed.record);
    }
    CHECK(accepted > 0);
    CHECK(PixelsOf(*telestrator.Inner().shapeSurface) == CanvasOf(telestrator));
}

}  // namespace
}  // namespace chalkpane
