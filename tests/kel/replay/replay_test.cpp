#include "kel/replay/replay_journal.h"

#include <doctest/doctest.h>

#include <string>

#include "cli/error.h"
#include "kel/replay/replay_picture.h"
#include "kel/video/video_reader.h"
#include "telestrator/journal/journal_file.h"
#include "tests/cli/working_folder.h"
#include "tests/kel/kel_folder.h"

namespace kel {
namespace {

using chalkpane::JournaledTelestrator;
using chalkpane::JournalFile;
using chalkpane::TelestratorSettings;
using testing::CheckRefused;
using testing::KelFolder;

// Red first in memory.
constexpr std::uint32_t red = 0xFF0000FFU;

// Two lines from left to right, each pressed in one field and released 10 later, the second 20 fields after the first;
// then the first is taken away. Fields: 1 to 11, 31 to 41, and 42.
void WriteJournal(const std::filesystem::path& file) {
    JournalFile journal(file);
    JournaledTelestrator telestrator(&journal);
    TelestratorSettings settings;
    settings.brushColour = red;
    settings.brushWidth = 20;
    const auto fields = [&](int count) {
        for (int i = 0; i < count; ++i) telestrator.Field(settings);
    };
    const auto line = [&](double y) {
        telestrator.Press(settings, {100, y});
        for (int i = 1; i < 10; ++i) {
            fields(1);
            telestrator.Move(settings, {100.0 + 80 * i, y});
        }
        fields(1);
        telestrator.Release(settings, {900, y});
    };
    fields(1);
    line(200);
    fields(20);
    line(800);
    fields(1);
    telestrator.Remove(1);
    REQUIRE_EQ(journal.Error(), "");
}

struct JournalFolder {
    JournalFolder() { WriteJournal(folder / "x.journal"); }
    [[nodiscard]] ReplayOptions To(const std::string& out) const {
        ReplayOptions options;
        options.journal = (folder / "x.journal").string();
        options.out = (folder / out).string();
        return options;
    }
    [[nodiscard]] picture_io::Picture Read(const std::string& name) const {
        return picture_io::ReadPicture(folder / name);
    }

    cli::testing::TemporaryFolder folder;
};

using Pixel = std::array<std::uint8_t, 4>;

// A soft brush covers the middle of its line all but wholly.
constexpr int covered = 240;

// The channels that are not red are what shines through.
bool IsRed(const Pixel& pixel) {
    return pixel[0] >= covered && pixel[1] <= 255 - covered && pixel[2] == 0 && pixel[3] >= covered;
}

TEST_CASE("a replay's last picture is the canvas at the end, upright and in its own colours") {
    const JournalFolder made;
    ReplayJournal(made.To("last.png"));
    const picture_io::Picture picture = made.Read("last.png");
    CHECK_EQ(picture.width, 1024);
    CHECK_EQ(picture.height, 1024);
    CHECK(IsRed(picture.At(500, 800)));
    CHECK_EQ(picture.At(500, 200)[3], 0);  // taken away
}

TEST_CASE("a replay has a picture for each field, in which lines grow as they were drawn") {
    const JournalFolder made;
    ReplayJournal(made.To("f%02d.png"));
    // 42 fields, the first of which is field 1. The line grows by 80 pixels a field, and its curve lags two behind.
    CHECK_EQ(made.folder.Entries(), 1 + 42);
    const auto alphaAt = [&](const char* name, int x, int y) { return made.Read(name).At(x, y)[3]; };
    CHECK(alphaAt("f00.png", 100, 200) >= covered);
    CHECK_EQ(alphaAt("f00.png", 200, 200), 0);
    CHECK(alphaAt("f05.png", 250, 200) >= covered);
    CHECK_EQ(alphaAt("f05.png", 600, 200), 0);
    CHECK(alphaAt("f10.png", 890, 200) >= covered);
    CHECK_EQ(alphaAt("f29.png", 100, 800), 0);
    CHECK(alphaAt("f30.png", 100, 800) >= covered);
    CHECK(alphaAt("f40.png", 500, 200) >= covered);
    CHECK_EQ(alphaAt("f41.png", 500, 200), 0);
}

// A film of the strokes is made of what changed from field to field, numbered pictures each of all of it.
TEST_CASE("the film of a replay has the pictures of its fields, with and without a background") {
    const JournalFolder made;
    picture_io::WritePicture(picture_io::Picture(100, 80), made.folder / "dark.png");
    for (const bool hasBackground : {false, true}) {
        CAPTURE(hasBackground);
        for (const char* out : {"f%02d.png", "f.mov"}) {
            ReplayOptions options = made.To(out);
            if (hasBackground) options.over = (made.folder / "dark.png").string();
            ReplayJournal(options);
        }
        VideoReader film(made.folder / "f.mov");
        REQUIRE_EQ(film.FrameCount(), 42);
        for (int field = 0; field < 42; ++field) {
            CAPTURE(field);
            const std::string number = std::to_string(100 + field).substr(1);
            CHECK(film.ReadFrame(field) == made.Read("f" + number + ".png"));
        }
    }
}

TEST_CASE("speed, length, from and to choose the fields of a film") {
    const JournalFolder made;
    const auto frames = [&](const ReplayOptions& options) {
        ReplayJournal(options);
        return VideoReader(options.out).FrameCount();
    };
    ReplayOptions options = made.To("a.mkv");
    CHECK_EQ(frames(options), 42);
    options.speed = 2;
    CHECK_EQ(frames(options), 22);  // 41 fields from first to last, in steps of 2, and the last
    options.speed = 1;
    options.from = 0.6;  // field 31, where the second line begins
    CHECK_EQ(frames(options), 12);
    options.to = 0.7;  // field 36
    CHECK_EQ(frames(options), 6);
    options.length = 1;
    CHECK_EQ(frames(options), 50);
    options = made.To("a.mkv");
    options.even = true;
    CHECK_EQ(frames(options), 21);  // 20 fields with the pen down
    CHECK_EQ(made.folder.Entries(), 2);
}

TEST_CASE("a replay over a picture has its size and covers it with ink alone") {
    const JournalFolder made;
    picture_io::Picture pitch(512, 256);
    for (std::size_t i = 0; i < pitch.rgba.size(); i += 4) {
        pitch.rgba[i + 1] = 100;
        pitch.rgba[i + 3] = 255;
    }
    picture_io::WritePicture(pitch, made.folder / "pitch.png");
    ReplayOptions options = made.To("over.png");
    options.over = (made.folder / "pitch.png").string();
    ReplayJournal(options);
    const picture_io::Picture picture = made.Read("over.png");
    CHECK_EQ(picture.width, 512);
    // A canvas of 1024 x 1024: its line at y 800 lies at 200 of 256.
    CHECK(IsRed(picture.At(250, 200)));
    CHECK_EQ(picture.At(250, 100), Pixel{0, 100, 0, 255});
}

TEST_CASE("each stroke by itself is written whole, whatever became of it later") {
    const JournalFolder made;
    ReplayOptions options = made.To("s.png");
    options.each = true;
    ReplayJournal(options);
    CHECK_EQ(made.folder.Entries(), 3);
    CHECK(made.Read("s-1.png").At(500, 200)[3] >= covered);
    CHECK_EQ(made.Read("s-1.png").At(500, 800)[3], 0);
    CHECK(made.Read("s-2.png").At(500, 800)[3] >= covered);
}

TEST_CASE("a replay that is stopped writes nothing") {
    const JournalFolder made;
    ReplayJournal(made.To("a.mkv"), [](std::int64_t field, std::int64_t) { return field < 5; });
    CHECK_EQ(made.folder.Entries(), 1);
}

// In a picture of half the side each pixel is the mean of two by two places, which are the canvas's own pixels.
TEST_CASE("a smaller picture takes the mean of the ink under each pixel, a larger one what lies between") {
    chalkpane::Image canvas = chalkpane::NewInkCanvas();
    std::byte* const pixel = canvas.Address(10, 20);
    for (int i = 0; i < 4; ++i) pixel[i] = std::byte{200};
    ReplayPicture half({512, 512});
    half.TakeInk(canvas, {10, 20, 10, 20});
    CHECK_EQ(half.Ink().At(5, 10), Pixel{50, 50, 50, 50});
    CHECK_EQ(half.Ink().At(6, 10), Pixel{});
    ReplayPicture same({1024, 1024});
    same.TakeInk(canvas, {10, 20, 10, 20});
    CHECK_EQ(same.Ink().At(10, 20), Pixel{200, 200, 200, 200});
    CHECK_EQ(same.Ink().At(11, 20), Pixel{});
    // Twice the side: a pixel's middle lies a quarter of a canvas pixel off, so 3/4 * 3/4 of 200 is 112.5.
    ReplayPicture twice({2048, 2048});
    twice.TakeInk(canvas, {10, 20, 10, 20});
    CHECK_EQ(twice.Ink().At(20, 40), Pixel{113, 113, 113, 113});
    CHECK_EQ(twice.Ink().At(18, 40), Pixel{});
}

TEST_CASE("kel replay draws a journal and refuses what is none") {
    const KelFolder folder;
    WriteJournal(folder.Path("x.journal"));
    CHECK_EQ(folder.Run("replay x.journal --out x.png --speed 4").exitCode, 0);
    CHECK(IsRed(folder.Open("x.png").At(500, 800)));
    // 50 fields of a second from one stroke each, and 6 from field 31 to 36.
    CHECK_EQ(folder.Run("replay x.journal --out s.mov --each --length 1").exitCode, 0);
    for (const char* film : {"s-1.mov", "s-2.mov"}) CHECK_EQ(VideoReader(folder.Path(film)).FrameCount(), 50);
    CHECK_EQ(folder.Run("replay x.journal --out p.mov --from 0.6 --to 0.7").exitCode, 0);
    CHECK_EQ(VideoReader(folder.Path("p.mov")).FrameCount(), 6);
    CheckRefused(folder, "replay s.json --out y.png", "s.json: line 1: a journal begins with \"chalkpane-journal 1\"");
    CheckRefused(folder, "replay none --out y.png", "none: cannot be read");
    folder.Write("empty.journal", "chalkpane-journal 1\n");
    CheckRefused(folder, "replay empty.journal --out y.png", "empty.journal: nothing was drawn");
    folder.Write("late.journal", "chalkpane-journal 1\n0 clear\n9007199254740992 clear\n");
    CheckRefused(folder, "replay late.journal --out y.mkv",
                 "late.journal: takes more than 10000000 fields; --from, --to and --speed shorten it");
    folder.Write("bad.journal", "chalkpane-journal 1\n0 remove 3\n");
    CheckRefused(folder, "replay bad.journal --out y.png", "bad.journal: line 2: there is no stroke 3 on the canvas");
}

}  // namespace
}  // namespace kel
