#include "telestrator/telestrator.h"

#include <doctest/doctest.h>

#include <cstring>
#include <limits>
#include <vector>

#include "tests/telestrator/telestrator_fixture.h"

namespace chalkpane::testing {
namespace {

// Pictures are told apart by the byte that fills them.
void Fill(TelestratorSurface& surface, int tag) {
    const CanvasPixels pixels = surface.GetPixels();
    std::memset(pixels.bytes, tag, pixels.byteSize);
}

int TagOf(const std::byte* pixels) { return static_cast<int>(pixels[0]); }
int CanvasTag(const Telestrator& telestrator) { return TagOf(telestrator.canvasSurface->GetPixels().bytes); }
int ShapeTag(const Telestrator& telestrator) { return TagOf(telestrator.shapeSurface->GetPixels().bytes); }

std::vector<int> RingTags(const Telestrator& telestrator) {
    std::vector<int> tags;
    for (const Snapshot& snapshot : *telestrator.undoRing) tags.push_back(TagOf(snapshot.get()));
    return tags;
}

void Commit(Telestrator& telestrator, int tag) {
    Fill(*telestrator.canvasSurface, tag);
    telestrator.PushUndoSnapshot();
}

TelestratorSettings WithUndos(std::int32_t count) {
    TelestratorSettings values = TelestratorSettings();
    values.maxUndos = count;
    return values;
}

using Tags = std::vector<int>;

TEST_CASE("A fresh ring holds MaxUndos copies of the blank canvas") {
    TelestratorFixture fixture(WithUndos(3));
    fixture.Field();
    CHECK_EQ(RingTags(fixture.telestrator), Tags{0, 0, 0});
    CHECK_EQ(fixture.telestrator.undoIndex, 0);
    CHECK_EQ(TagOf(fixture.telestrator.currentSnapshot.get()), 0);
}

TEST_CASE("A push saves the state before it; the oldest is overwritten") {
    TelestratorFixture fixture(WithUndos(3));
    fixture.Field();
    Commit(fixture.telestrator, 1);
    CHECK_EQ(fixture.telestrator.undoIndex, 1);
    Commit(fixture.telestrator, 2);
    CHECK_EQ(RingTags(fixture.telestrator), Tags{0, 0, 1});
    CHECK_EQ(fixture.telestrator.undoIndex, 2);
    Commit(fixture.telestrator, 3);
    CHECK_EQ(RingTags(fixture.telestrator), Tags{2, 0, 1});
    CHECK_EQ(fixture.telestrator.undoIndex, 0);
    CHECK_EQ(TagOf(fixture.telestrator.currentSnapshot.get()), 3);
}

TEST_CASE("Undo goes back state by state, then wraps and brings newer ones") {
    TelestratorFixture fixture(WithUndos(3));
    fixture.Field();
    for (const int tag : {1, 2, 3}) Commit(fixture.telestrator, tag);
    Tags seen;
    for (int i = 0; i < 4; ++i) {
        fixture.telestrator.RestoreUndoSnapshot();
        seen.push_back(CanvasTag(fixture.telestrator));
        CHECK_EQ(ShapeTag(fixture.telestrator), seen.back());
        CHECK_EQ(TagOf(fixture.telestrator.currentSnapshot.get()), seen.back());
    }
    CHECK_EQ(seen, Tags{2, 1, 0, 2});  // the slot of 0 was never written since creation
    CHECK(fixture.telestrator.fullUploadPending);
}

TEST_CASE("With one undo the same state comes back again and again") {
    TelestratorFixture fixture(WithUndos(1));
    fixture.Field();
    Commit(fixture.telestrator, 1);
    Commit(fixture.telestrator, 2);
    for (int i = 0; i < 2; ++i) {
        fixture.telestrator.RestoreUndoSnapshot();
        CHECK_EQ(CanvasTag(fixture.telestrator), 1);
        CHECK_EQ(fixture.telestrator.undoIndex, 0);
    }
}

TEST_CASE("Without undos pushes renew the snapshot, and undo does nothing") {
    TelestratorFixture fixture(WithUndos(0));
    fixture.Field();
    Commit(fixture.telestrator, 5);
    CHECK_EQ(TagOf(fixture.telestrator.currentSnapshot.get()), 5);
    fixture.telestrator.fullUploadPending = false;
    fixture.telestrator.RestoreUndoSnapshot();
    CHECK_EQ(CanvasTag(fixture.telestrator), 5);
    CHECK_FALSE(fixture.telestrator.fullUploadPending);
}

TEST_CASE("Clear can be taken back") {
    TelestratorFixture fixture(WithUndos(3));
    fixture.Field();
    Commit(fixture.telestrator, 1);
    Fill(*fixture.telestrator.shapeSurface, 1);
    fixture.telestrator.fullUploadPending = false;
    fixture.telestrator.ClearCanvas();
    CHECK(IsBlank(*fixture.telestrator.canvasSurface));
    CHECK(IsBlank(*fixture.telestrator.shapeSurface));
    CHECK_EQ(RingTags(fixture.telestrator), Tags{0, 0, 1});
    CHECK_EQ(TagOf(fixture.telestrator.currentSnapshot.get()), 0);
    CHECK(fixture.telestrator.fullUploadPending);
    fixture.telestrator.RestoreUndoSnapshot();
    CHECK_EQ(CanvasTag(fixture.telestrator), 1);
    CHECK_EQ(ShapeTag(fixture.telestrator), 1);
}

TEST_CASE("Clear without undos clears and counts nothing") {
    TelestratorFixture fixture(WithUndos(0));
    fixture.Field();
    Commit(fixture.telestrator, 5);
    fixture.telestrator.ClearCanvas();
    CHECK(IsBlank(*fixture.telestrator.canvasSurface));
    CHECK_EQ(fixture.telestrator.undoIndex, 0);
    CHECK_EQ(TagOf(fixture.telestrator.currentSnapshot.get()), 0);
}

TEST_CASE("Clear and undo before the first field do nothing") {
    TelestratorFixture fixture(WithUndos(2));
    fixture.telestrator.ClearCanvas();
    fixture.telestrator.RestoreUndoSnapshot();
    CHECK_FALSE(fixture.telestrator.fullUploadPending);
}

// Commits 1, 2, 3, 4 into a ring of four: entries 3, 0, 1, 2 with the newest at 0, the oldest behind it.
TEST_CASE("Lowering MaxUndos removes the oldest states first") {
    TelestratorFixture fixture(WithUndos(4));
    fixture.Field();
    for (const int tag : {1, 2, 3, 4}) Commit(fixture.telestrator, tag);
    CHECK_EQ(RingTags(fixture.telestrator), Tags{3, 0, 1, 2});
    fixture.settings.maxUndos = 2;
    fixture.Field();
    CHECK_EQ(RingTags(fixture.telestrator), Tags{3, 2});
    CHECK_EQ(fixture.telestrator.undoIndex, 0);
}

// Commits 1, 2 into a ring of three: entries 0, 0, 1, the newest at the end, so the oldest is the first.
TEST_CASE("Removing in front of the newest moves the index along") {
    TelestratorFixture fixture(WithUndos(3));
    fixture.Field();
    Commit(fixture.telestrator, 1);
    Commit(fixture.telestrator, 2);
    CHECK_EQ(fixture.telestrator.undoIndex, 2);
    fixture.settings.maxUndos = 2;
    fixture.Field();
    CHECK_EQ(RingTags(fixture.telestrator), Tags{0, 1});
    CHECK_EQ(fixture.telestrator.undoIndex, 1);
}

TEST_CASE("Raising MaxUndos adds copies of the present canvas behind the newest; the index stays") {
    TelestratorFixture fixture(WithUndos(2));
    fixture.Field();
    Commit(fixture.telestrator, 1);
    Commit(fixture.telestrator, 2);  // entries 1, 0, newest at 0
    CHECK_EQ(RingTags(fixture.telestrator), Tags{1, 0});
    fixture.settings.maxUndos = 4;
    fixture.Field();
    CHECK_EQ(RingTags(fixture.telestrator), Tags{1, 2, 2, 0});
    CHECK_EQ(fixture.telestrator.undoIndex, 0);
}

TEST_CASE("A ring may go to nothing and come back") {
    TelestratorFixture fixture(WithUndos(3));
    fixture.Field();
    Commit(fixture.telestrator, 1);
    fixture.settings.maxUndos = 0;
    fixture.Field();
    CHECK(fixture.telestrator.undoRing->empty());
    Commit(fixture.telestrator, 2);
    fixture.settings.maxUndos = 3;
    fixture.Field();
    CHECK_EQ(RingTags(fixture.telestrator), Tags{2, 2, 2});
    Commit(fixture.telestrator, 3);
    fixture.telestrator.RestoreUndoSnapshot();
    CHECK_EQ(CanvasTag(fixture.telestrator), 2);
}

TEST_CASE("No value of MaxUndos makes a ring of less than 0 or more than 10") {
    TelestratorFixture fixture(WithUndos(std::numeric_limits<std::int32_t>::max()));
    fixture.Field();
    CHECK_EQ(fixture.telestrator.undoRing->size(), 10);
    fixture.settings.maxUndos = -5;
    fixture.Field();
    CHECK(fixture.telestrator.undoRing->empty());
    fixture.telestrator.RestoreUndoSnapshot();
    fixture.telestrator.ClearCanvas();
    fixture.settings.maxUndos = std::numeric_limits<std::int32_t>::min();
    fixture.Field();
    CHECK(fixture.telestrator.undoRing->empty());
}

TEST_CASE("Undo in the middle of a stroke jumps back, and the stroke goes on") {
    TelestratorFixture fixture;
    fixture.Field();
    fixture.Press(100, 100);
    fixture.Release(150, 100);
    fixture.Press(300, 300);
    fixture.Move(350, 300);
    fixture.telestrator.RestoreUndoSnapshot();  // the ring's newest state is the blank canvas
    CHECK(IsBlank(*fixture.telestrator.canvasSurface));
    fixture.Move(400, 350);
    fixture.Move(450, 350);
    CHECK_FALSE(IsBlank(*fixture.telestrator.canvasSurface));
}

}  // namespace
}  // namespace chalkpane::testing
