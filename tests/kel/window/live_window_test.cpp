#include <doctest/doctest.h>

#include <nlohmann/json.hpp>
#include <regex>

#include "tests/kel/outputs/stream_reader.h"
#include "tests/kel/window/paper_window.h"

// What is sent live while an operator draws, read by a program of its own.

namespace kel {
namespace {

using testing::AddressIn;
using testing::Difference;
using testing::ink;
using testing::paper;
using testing::PaperWindow;
using testing::StreamReader;
using testing::WaitUntil;

void DrawAcross(PaperWindow& window, double height) {
    const std::int64_t before = window.FieldOf("run.json", "release");
    window.MoveOnPaper(0.2, height);
    window.display.PressButton(true);
    window.MoveOnPaper(0.8, height);
    window.display.PressButton(false);
    WaitUntil("the stroke has ended", [&] { return window.FieldOf("run.json", "release") > before; });
}

// What the next reader sees.
picture_io::Picture SentTo(const std::string& address) {
    StreamReader reader(address);
    CHECK_EQ(reader.Program().WaitForEnd(), 0);
    picture_io::Picture picture = reader.Last(1200, 900);
    REQUIRE_FALSE(picture.rgba.empty());
    return picture;
}

// The first picture that has ink on both strokes.
picture_io::Picture SentWithInk(const std::string& address) {
    picture_io::Picture picture;
    WaitUntil("the ink is sent", [&] {
        picture = SentTo(address);
        return Difference(picture.At(600, 360), ink) < 60 && Difference(picture.At(600, 540), ink) < 60;
    });
    return picture;
}

}  // namespace

TEST_CASE("Ink goes on while the readers of a window's live outputs are killed, and others see it") {
    PaperWindow window({"--live", "tcp://:0", "--live-overlay", "tcp://:0?alpha=straight&codec=raw"});
    const std::string said = (window.folder / "stdout").string();
    WaitUntil("it says where it is read", [&] { return !AddressIn(said, 1).empty(); });
    const std::string picture = AddressIn(said, 0);
    const std::string strokes = AddressIn(said, 1);
    window.SetByKey("3", "BrushColor");
    for (int i = 0; i < 10; ++i) window.display.TypeKey("bracketright");
    StreamReader killed = StreamReader::Endless(picture);
    StreamReader alsoKilled = StreamReader::Endless(strokes);
    WaitUntil("both are read", [&] { return killed.HasRead() && alsoKilled.HasRead(); });
    DrawAcross(window, 0.4);
    killed.Kill();
    alsoKilled.Kill();
    DrawAcross(window, 0.6);
    CHECK_LE(Difference(SentWithInk(picture).At(600, 90), paper), 1);
    CHECK(SentWithInk(strokes).At(600, 90) == testing::Pixel{0, 0, 0, 0});
    window.display.TypeKey("q", true);
    CHECK_EQ(window.WaitForEnd(), 0);
    const std::string text = cli::testing::ReadText(said);
    CAPTURE(text);
    CHECK(
        std::regex_search(text, std::regex("live: " + picture + ": [0-9]+ pictures sent, [0-9]+ dropped, [0-9]+ re")));
    CHECK(
        std::regex_search(text, std::regex("live: " + strokes + ": [0-9]+ pictures sent, [0-9]+ dropped, [0-9]+ re")));
}

TEST_CASE("A window that nobody reads closes at once, and one whose port is taken does not open") {
    PaperWindow window({"--live-overlay", "tcp://:0"});
    const std::string said = (window.folder / "stdout").string();
    WaitUntil("it says where it is read", [&] { return !AddressIn(said, 0).empty(); });
    testing::KelWindow other;
    picture_io::WritePicture(testing::Plain(12, 9, paper), other.folder / "paper.png");
    other.Start({"paper.png", "--live", AddressIn(said, 0)});
    CHECK_EQ(other.WaitForEnd(), 2);
    CHECK_EQ(cli::testing::ReadText(other.folder / "stderr"),
             "kel: " + AddressIn(said, 0) + ": cannot be listened at: Address already in use\n");
    window.display.TypeKey("q", true);
    CHECK_EQ(window.WaitForEnd(), 0);
    CHECK_NE(cli::testing::ReadText(said).find(": 0 pictures sent, 0 dropped, 0 readers\n"), std::string::npos);
}

}  // namespace kel
