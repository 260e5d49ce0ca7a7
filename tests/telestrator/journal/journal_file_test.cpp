#include "telestrator/journal/journal_file.h"

#include <doctest/doctest.h>

#include <fstream>
#include <sstream>

#include "tests/cli/temporary_folder.h"
#include "tests/telestrator/journal/random_session.h"

namespace chalkpane {
namespace {

using testing::CanvasOf;
using testing::Draw;
using testing::Pixels;
using testing::SessionMaker;

std::string TextOf(const std::filesystem::path& file) {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

void WriteText(const std::filesystem::path& file, std::string_view text) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
}

// Follows the file on a fresh telestrator.
Pixels CanvasOfFile(const std::filesystem::path& file) {
    const ReadJournal read = ReadJournalFile(file);
    REQUIRE_EQ(read.error, "");
    JournaledTelestrator telestrator;
    telestrator.Field({});
    REQUIRE_EQ(Follow(telestrator, read.records), "");
    return CanvasOf(telestrator);
}

TEST_CASE("a journal cut off at any byte holds everything up to its last whole record, and is gone on with there") {
    const cli::testing::TemporaryFolder folder;
    const std::filesystem::path file = folder.Path() / "drawing.journal";
    SessionMaker maker(81);
    std::vector<Pixels> canvases;
    std::vector<std::size_t> sizes;  // of the file, with so many records
    {
        JournalFile journal(file);
        JournaledTelestrator telestrator(&journal);
        telestrator.Field({});
        canvases.push_back(CanvasOf(telestrator));
        sizes.push_back(TextOf(file).size());
        while (sizes.size() < 6) {
            Draw(telestrator, maker.Stroke());
            if (TextOf(file).size() == sizes.back()) continue;
            canvases.push_back(CanvasOf(telestrator));
            sizes.push_back(TextOf(file).size());
        }
        CHECK_EQ(journal.Error(), "");
    }
    const std::string whole = TextOf(file);
    for (int i = 0; i < 12; ++i) {
        const auto size =
            static_cast<std::size_t>(maker.Number(static_cast<int>(sizes.front()), static_cast<int>(whole.size())));
        std::size_t records = 0;
        while (records + 1 < sizes.size() && sizes[records + 1] <= size) ++records;
        WriteText(file, std::string_view(whole).substr(0, size));
        CAPTURE(size);
        CHECK(CanvasOfFile(file) == canvases[records]);

        JournalFile journal(file);
        REQUIRE_EQ(journal.Error(), "");
        JournaledTelestrator telestrator(&journal);
        telestrator.Field({});
        REQUIRE_EQ(Follow(telestrator, journal.Former()), "");
        Draw(telestrator, maker.Stroke());
        CHECK(CanvasOfFile(file) == CanvasOf(telestrator));
        CHECK_EQ(TextOf(file).substr(0, sizes[records]), whole.substr(0, sizes[records]));
    }
}

TEST_CASE("a record that is torn in a pen's pressure is left out, and those before it keep theirs") {
    const cli::testing::TemporaryFolder folder;
    const std::filesystem::path file = folder.Path() / "pen.journal";
    {
        JournalFile journal(file);
        JournaledTelestrator telestrator(&journal);
        telestrator.Field({});
        for (const double y : {100.0, 200.0}) {
            telestrator.Press({}, {100, y}, 0.375);
            telestrator.Release({}, {300, y}, 0.625);
        }
    }
    std::string text = TextOf(file);
    text.resize(text.rfind("0.625") + 3);
    WriteText(file, text);
    const ReadJournal read = ReadJournalFile(file);
    REQUIRE_EQ(read.error, "");
    REQUIRE_EQ(read.records.size(), 1);
    const InkStroke& stroke = *read.records.front().strokes.front();
    REQUIRE_EQ(stroke.hand.size(), 2);
    CHECK_EQ(stroke.hand[0].pressure, 0.375);
    CHECK_EQ(stroke.hand[1].pressure, 0.625);
}

TEST_CASE("what is no journal is refused with its line, and a file that is none is left as it is") {
    const auto errorOf = [](std::string_view text) { return ParseJournal(text).error; };
    CHECK_EQ(errorOf(""), "line 1: a journal begins with \"chalkpane-journal 1\"");
    CHECK_EQ(errorOf("chalkpane-journal 2\n"), "line 1: a journal begins with \"chalkpane-journal 1\"");
    CHECK_EQ(errorOf("chalkpane-journal 1\n0 undo\n0 redo 1\n"),
             "line 3: word 3, \"1\", is not expected: the record is over");
    CHECK_EQ(errorOf("chalkpane-journal 1\n0 undo\n0 redo 1"), "");  // torn, so it is not looked at

    const cli::testing::TemporaryFolder folder;
    const std::filesystem::path file = folder.Path() / "notes.txt";
    WriteText(file, "milk\n");
    CHECK_EQ(JournalFile(file).Error(), file.string() + ": line 1: a journal begins with \"chalkpane-journal 1\"");
    CHECK_EQ(TextOf(file), "milk\n");
    CHECK_EQ(JournalFile(folder.Path() / "missing" / "a").Error(),
             (folder.Path() / "missing" / "a").string() + ": cannot be written");
    CHECK_EQ(ReadJournalFile(folder.Path() / "none").error, "cannot be read");
}

TEST_CASE("a record that cannot be done is told with its line") {
    const auto errorOf = [](const std::string& records) {
        const ReadJournal read = ParseJournal("chalkpane-journal 1\n" + records);
        REQUIRE_EQ(read.error, "");
        JournaledTelestrator telestrator;
        telestrator.Field({});
        return Follow(telestrator, read.records);
    };
    CHECK_EQ(errorOf("0 undo\n"), "line 2: there is nothing to undo");
    CHECK_EQ(errorOf("0 clear\n0 redo\n"), "line 3: there is nothing to redo");
    CHECK_EQ(errorOf("0 clear\n0 remove 7\n"), "line 3: there is no stroke 7 on the canvas");
    CHECK_EQ(
        errorOf("1 stroke 2 raw 0 0 1 1 set 0 5 10 0 0 1 0 1 50 1 30 20 0 1 paint 5 0 0 0 p 0 9 9 1 r 1 9 9 1 end\n"),
        "line 2: stroke 2 comes where stroke 1 is next");
    CHECK_EQ(errorOf("0 clear\n0 undo\n0 redo\n"), "");
}

// 3000 dabs of 2049 pixels across a canvas of 1024: 3000 * 1048576 is 3.1e9 pixels a stroke, 1e12 is 317.9 of them.
TEST_CASE("a journal with more to paint than a hand can draw is refused before it is painted") {
    std::string stroke = " raw 0 0 1 1 set 0 5 10 0 0 1 0 1 50 1 30 20 0 1 paint 1024 0 0 0 p 0 9 9 1";
    for (int i = 1; i < 3000; ++i) stroke += " m 1 9 9 1";
    std::string text(journalHeader);
    text += '\n';
    for (int i = 1; i <= 317; ++i) text += "1 stroke " + std::to_string(i) + stroke + " end\n";
    CHECK_EQ(ParseJournal(text).error, "");
    text += "1 stroke 318" + stroke + " end\n";
    CHECK_EQ(ParseJournal(text).error, "line 319: there is more to paint than a hand can draw");
}

TEST_CASE("a kept drawing has the strokes that are on the canvas, under numbers from 1") {
    SessionMaker maker(82);
    JournaledTelestrator telestrator;
    telestrator.Field({});
    for (int i = 0; i < 8; ++i) Draw(telestrator, maker.Stroke());
    telestrator.Remove(1);
    const std::string text = DrawingText(*telestrator.Drawing());
    const KeptDrawing kept = ParseDrawing(text);
    REQUIRE_EQ(kept.error, "");
    JournaledTelestrator other;
    other.Field({});
    CHECK(other.Insert(kept.strokes, InkDrawing::Recall::InPlace));
    CHECK(CanvasOf(other) == CanvasOf(telestrator));
    CHECK_EQ(DrawingText(*other.Drawing()), text);
}

}  // namespace
}  // namespace chalkpane
