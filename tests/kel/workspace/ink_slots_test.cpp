#include "kel/workspace/ink_slots.h"

#include <doctest/doctest.h>

#include "kel/ink/ink_thumbnail.h"
#include "kel/session/session_lines.h"
#include "kel/workspace/workspace.h"
#include "telestrator/journal/journaled_telestrator.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"
#include "tests/kel/pixels.h"

// Drawings that are kept in files beside what is open, and recalled there or elsewhere.

namespace kel {
namespace {

using chalkpane::InkDrawing;
using cli::testing::TemporaryFolder;
using cli::testing::Thrown;
using cli::testing::WriteText;

// A line across the canvas at that height, y downwards.
std::vector<chalkpane::SharedStroke> LineAt(double y, double fromX = 100, double toX = 900, std::int32_t radius = 40) {
    chalkpane::JournaledTelestrator telestrator;
    chalkpane::TelestratorSettings settings;
    settings.brushWidth = radius;
    settings.brushColour = 0xFF0000FFU;  // red first in memory
    telestrator.Field(settings);
    telestrator.Press(settings, {fromX, y});
    telestrator.Release(settings, {toX, y});
    return {telestrator.Drawing()->Strokes().front().ink};
}

// A workspace on a grey picture of that size, in a folder with others.
class Opened {
public:
    Opened(const TemporaryFolder& folder, const std::string& name, WindowSize size) : m_folder(folder), m_name(name) {
        picture_io::WritePicture(testing::Plain(size.width, size.height, {90, 90, 90, 255}), folder / (name + ".png"));
        WorkspaceOptions options;
        options.module = CHALKPANE_MODULE;
        options.recording = Recording();
        options.saves = folder.Path();
        m_workspace.emplace(folder / (name + ".png"), options);
        m_workspace->RunFields(1);
    }

    // A stroke at shares of the picture's height.
    void Draw(double from, double to) {
        const WindowSize size = m_workspace->SceneSize();
        const auto y = [&](double share) { return static_cast<std::int32_t>(size.height * share); };
        m_workspace->Point(PointerKind::Press, size.width / 5, y(from));
        m_workspace->RunFields(1);
        m_workspace->Point(PointerKind::Move, size.width / 2, y(to));
        m_workspace->RunFields(1);
        m_workspace->Point(PointerKind::Release, size.width * 4 / 5, y(to));
        m_workspace->RunFields(100);  // so that it has become what it will
    }
    void Recall(int slot, InkDrawing::Recall recall) {
        m_workspace->Recall(slot, recall);
        m_workspace->RunFields(1);
    }
    picture_io::Picture Canvas() { return m_workspace->TheHost().ReadPremultipliedCanvas(m_workspace->Chosen()->id); }
    [[nodiscard]] std::filesystem::path Recording() const { return m_folder / (m_name + ".json"); }
    Workspace& TheWorkspace() { return *m_workspace; }
    // Ends it, so that all is recorded.
    void Close() { m_workspace.reset(); }

private:
    const TemporaryFolder& m_folder;
    std::string m_name;
    std::optional<Workspace> m_workspace;
};

picture_io::Picture PlayedCanvas(const std::filesystem::path& file) {
    const Session session = ReadSession(file);
    Host host({session.window.width, session.window.height});
    Player player(session, host, CHALKPANE_MODULE);
    while (!player.IsOver()) (void)player.PlayField(Player::Rendering::NotWanted);
    return host.ReadPremultipliedCanvas(player.OverlayContainer());
}

}  // namespace

TEST_CASE("A kept drawing is a journal beside what is open, whose small picture shows its ink where it lies") {
    const TemporaryFolder folder;
    InkSlots slots(folder / "match.mp4");
    CHECK(slots.Thumbnail(3) == nullptr);
    const std::size_t before = slots.Changes();
    slots.Keep(3, LineAt(256));
    CHECK_GT(slots.Changes(), before);
    CHECK(std::filesystem::exists(folder / "match-slot-3.journal"));
    // Whoever opens the film next finds it.
    InkSlots later(folder / "match.mp4");
    for (InkSlots* const each : {&slots, &later}) {
        const picture_io::Picture* const picture = each->Thumbnail(3);
        REQUIRE(picture != nullptr);
        CHECK_EQ(picture->width, 64);
        CHECK_EQ(picture->height, 64);
        // 16 canvas pixels to each: the line covers 216 to 296, so row 15, of 240 to 255, is near its middle.
        CHECK_GT(picture->At(30, 15)[0], 240);
        CHECK_GT(picture->At(30, 15)[3], 240);
        CHECK_LT(picture->At(30, 15)[1], 15);
        CHECK(picture->At(30, 40) == testing::Pixel{});
        CHECK(picture->At(1, 15) == testing::Pixel{});
        CHECK(each->Thumbnail(4) == nullptr);
    }
    CHECK_EQ(later.Read(3).size(), 1);
}

// From 700 to 760 with a brush of 5: a square of 128 pixels around 730, 900, so 2 for each of the small picture's.
TEST_CASE("A small drawing fills its small picture, wherever on the canvas it lies") {
    const picture_io::Picture picture = InkThumbnail(LineAt(900, 700, 760, 5), 64);
    CHECK_GT(picture.At(31, 31)[3], 200);
    CHECK_GT(picture.At(20, 31)[3], 200);
    CHECK_EQ(picture.At(5, 31)[3], 0);
    CHECK_EQ(picture.At(31, 20)[3], 0);
    CHECK(InkThumbnail({}, 64) == picture_io::Picture(64, 64));
    // At the canvas's edge the square stays within it.
    CHECK_GT(InkThumbnail(LineAt(1020, 960, 1020, 5), 64).At(40, 62)[3], 200);
}

TEST_CASE("A slot's file that is no journal has no small picture, and is refused by its name") {
    const TemporaryFolder folder;
    InkSlots slots(folder / "match.mp4");
    WriteText(folder / "match-slot-1.journal", "holiday.png\n");
    CHECK(slots.Thumbnail(1) == nullptr);
    CHECK_EQ(Thrown([&] { (void)slots.Read(1); }),
             (folder / "match-slot-1.journal").string() + ": line 1: a journal begins with \"chalkpane-journal 1\"");
}

TEST_CASE("A drawing recalled on another picture, of another size, lies at the same place of the container") {
    const TemporaryFolder folder;
    Opened first(folder, "first", {320, 240});
    first.Draw(0.3, 0.4);
    first.TheWorkspace().Keep(2);
    const picture_io::Picture drawn = first.Canvas();
    CHECK_FALSE(drawn == picture_io::Picture(1024, 1024));
    first.Close();
    std::filesystem::copy_file(folder / "first-slot-2.journal", folder / "wide-slot-7.journal");
    Opened wide(folder, "wide", {500, 200});
    wide.Recall(7, InkDrawing::Recall::Over);
    CHECK(wide.Canvas() == drawn);
    wide.Close();
    CHECK(PlayedCanvas(wide.Recording()) == drawn);
}

TEST_CASE("The workspace recalls a drawing over what is there or in its place, and undoes it as one edit") {
    const TemporaryFolder folder;
    Opened opened(folder, "page", {320, 240});
    opened.Draw(0.2, 0.2);
    opened.Draw(0.3, 0.3);
    const picture_io::Picture kept = opened.Canvas();
    opened.TheWorkspace().Keep(1);
    opened.TheWorkspace().Push("Clear");
    opened.TheWorkspace().RunFields(1);
    opened.Draw(0.7, 0.8);
    const picture_io::Picture other = opened.Canvas();
    opened.Recall(1, InkDrawing::Recall::InPlace);
    CHECK(opened.Canvas() == kept);
    opened.TheWorkspace().Undo();
    opened.TheWorkspace().RunFields(1);
    CHECK(opened.Canvas() == other);
    opened.Recall(1, InkDrawing::Recall::Over);
    const picture_io::Picture both = opened.Canvas();
    CHECK_FALSE(both == kept);
    CHECK_FALSE(both == other);
    opened.Recall(5, InkDrawing::Recall::InPlace);  // nothing was kept there
    CHECK(opened.Canvas() == both);
    CHECK_FALSE(opened.TheWorkspace().TakeNews().empty());
    opened.Close();
    CHECK(PlayedCanvas(opened.Recording()) == both);
}

TEST_CASE("What fades at the workspace fades in the play of its recording") {
    const TemporaryFolder folder;
    Opened opened(folder, "page", {320, 240});
    opened.TheWorkspace().SetFading({true, 3, 1});
    opened.Draw(0.2, 0.4);
    // The wait of 150 fields began when the stroke was recognised, 50 after its release.
    const picture_io::Picture whole = opened.Canvas();
    opened.TheWorkspace().RunFields(120);
    CHECK_FALSE(opened.Canvas() == whole);
    CHECK_FALSE(opened.Canvas() == picture_io::Picture(1024, 1024));
    opened.TheWorkspace().RunFields(60);
    CHECK(opened.Canvas() == picture_io::Picture(1024, 1024));
    opened.TheWorkspace().Undo();
    opened.TheWorkspace().RunFields(1);
    CHECK(opened.Canvas() == whole);
    opened.TheWorkspace().SetFading({});
    opened.TheWorkspace().RunFields(300);
    CHECK(opened.Canvas() == whole);
    opened.Close();
    CHECK(PlayedCanvas(opened.Recording()) == whole);
}

}  // namespace kel
