#include "module/undo_history.h"

#include <doctest/doctest.h>

#include <cstring>
#include <limits>
#include <vector>

#include "tests/module/module_fixture.h"

namespace chalkpane::testing {
namespace {

// Pictures are told apart by the byte that fills them.
void Fill(TelestratorSurface& surface, int tag) {
    const CanvasPixels pixels = surface.GetPixels();
    std::memset(pixels.bytes, tag, pixels.byteSize);
}

int TagOf(const std::byte* pixels) { return static_cast<int>(pixels[0]); }
int CanvasTag(const PluginInstance& plugin) { return TagOf(plugin.canvasSurface->GetPixels().bytes); }
int ShapeTag(const PluginInstance& plugin) { return TagOf(plugin.shapeSurface->GetPixels().bytes); }

std::vector<int> RingTags(const PluginInstance& plugin) {
    std::vector<int> tags;
    for (const Snapshot& snapshot : *plugin.undoRing) tags.push_back(TagOf(snapshot.get()));
    return tags;
}

void Commit(PluginInstance& plugin, int tag) {
    Fill(*plugin.canvasSurface, tag);
    PushUndoSnapshot(plugin);
}

PluginParameters WithUndos(std::int32_t count) {
    PluginParameters values = DefaultParameters();
    values.MaxUndos = count;
    return values;
}

using Tags = std::vector<int>;

TEST_CASE("A fresh ring holds MaxUndos copies of the blank canvas") {
    ModuleFixture fixture(WithUndos(3));
    fixture.Field();
    CHECK_EQ(RingTags(fixture.plugin), Tags{0, 0, 0});
    CHECK_EQ(fixture.plugin.undoIndex, 0);
    CHECK_EQ(TagOf(fixture.plugin.currentSnapshot.get()), 0);
}

TEST_CASE("A push saves the state before it; the oldest is overwritten") {
    ModuleFixture fixture(WithUndos(3));
    fixture.Field();
    Commit(fixture.plugin, 1);
    CHECK_EQ(fixture.plugin.undoIndex, 1);
    Commit(fixture.plugin, 2);
    CHECK_EQ(RingTags(fixture.plugin), Tags{0, 0, 1});
    CHECK_EQ(fixture.plugin.undoIndex, 2);
    Commit(fixture.plugin, 3);
    CHECK_EQ(RingTags(fixture.plugin), Tags{2, 0, 1});
    CHECK_EQ(fixture.plugin.undoIndex, 0);
    CHECK_EQ(TagOf(fixture.plugin.currentSnapshot.get()), 3);
}

TEST_CASE("Undo goes back state by state, then wraps and brings newer ones") {
    ModuleFixture fixture(WithUndos(3));
    fixture.Field();
    for (const int tag : {1, 2, 3}) Commit(fixture.plugin, tag);
    Tags seen;
    for (int i = 0; i < 4; ++i) {
        RestoreUndoSnapshot(fixture.plugin);
        seen.push_back(CanvasTag(fixture.plugin));
        CHECK_EQ(ShapeTag(fixture.plugin), seen.back());
        CHECK_EQ(TagOf(fixture.plugin.currentSnapshot.get()), seen.back());
    }
    CHECK_EQ(seen, Tags{2, 1, 0, 2});  // the slot of 0 was never written since creation
    CHECK(fixture.plugin.fullUploadPending);
}

TEST_CASE("With one undo the same state comes back again and again") {
    ModuleFixture fixture(WithUndos(1));
    fixture.Field();
    Commit(fixture.plugin, 1);
    Commit(fixture.plugin, 2);
    for (int i = 0; i < 2; ++i) {
        RestoreUndoSnapshot(fixture.plugin);
        CHECK_EQ(CanvasTag(fixture.plugin), 1);
        CHECK_EQ(fixture.plugin.undoIndex, 0);
    }
}

TEST_CASE("Without undos pushes renew the snapshot, and undo does nothing") {
    ModuleFixture fixture(WithUndos(0));
    fixture.Field();
    Commit(fixture.plugin, 5);
    CHECK_EQ(TagOf(fixture.plugin.currentSnapshot.get()), 5);
    fixture.plugin.fullUploadPending = false;
    RestoreUndoSnapshot(fixture.plugin);
    CHECK_EQ(CanvasTag(fixture.plugin), 5);
    CHECK_FALSE(fixture.plugin.fullUploadPending);
}

TEST_CASE("Clear can be taken back") {
    ModuleFixture fixture(WithUndos(3));
    fixture.Field();
    Commit(fixture.plugin, 1);
    Fill(*fixture.plugin.shapeSurface, 1);
    fixture.plugin.fullUploadPending = false;
    PLUGIN_EXEC_ACTION(&fixture.plugin, 0);
    CHECK(IsBlank(*fixture.plugin.canvasSurface));
    CHECK(IsBlank(*fixture.plugin.shapeSurface));
    CHECK_EQ(RingTags(fixture.plugin), Tags{0, 0, 1});
    CHECK_EQ(TagOf(fixture.plugin.currentSnapshot.get()), 0);
    CHECK(fixture.plugin.fullUploadPending);
    PLUGIN_EXEC_ACTION(&fixture.plugin, 1);
    CHECK_EQ(CanvasTag(fixture.plugin), 1);
    CHECK_EQ(ShapeTag(fixture.plugin), 1);
}

TEST_CASE("Clear without undos clears and counts nothing") {
    ModuleFixture fixture(WithUndos(0));
    fixture.Field();
    Commit(fixture.plugin, 5);
    ClearCanvas(fixture.plugin);
    CHECK(IsBlank(*fixture.plugin.canvasSurface));
    CHECK_EQ(fixture.plugin.undoIndex, 0);
    CHECK_EQ(TagOf(fixture.plugin.currentSnapshot.get()), 0);
}

TEST_CASE("Actions before the first field and unknown actions do nothing") {
    ModuleFixture fixture(WithUndos(2));
    PLUGIN_EXEC_ACTION(&fixture.plugin, 0);
    PLUGIN_EXEC_ACTION(&fixture.plugin, 1);
    CHECK(fixture.host.calls.empty());
    CHECK_FALSE(fixture.plugin.fullUploadPending);
    fixture.Field();
    Commit(fixture.plugin, 7);
    PLUGIN_EXEC_ACTION(&fixture.plugin, 2);
    PLUGIN_EXEC_ACTION(&fixture.plugin, -1);
    CHECK_EQ(CanvasTag(fixture.plugin), 7);
}

// Commits 1, 2, 3, 4 into a ring of four: entries 3, 0, 1, 2 with the newest at 0, the oldest behind it.
TEST_CASE("Lowering MaxUndos removes the oldest states first") {
    ModuleFixture fixture(WithUndos(4));
    fixture.Field();
    for (const int tag : {1, 2, 3, 4}) Commit(fixture.plugin, tag);
    CHECK_EQ(RingTags(fixture.plugin), Tags{3, 0, 1, 2});
    fixture.plugin.MaxUndos = 2;
    fixture.Field();
    CHECK_EQ(RingTags(fixture.plugin), Tags{3, 2});
    CHECK_EQ(fixture.plugin.undoIndex, 0);
}

// Commits 1, 2 into a ring of three: entries 0, 0, 1, the newest at the end, so the oldest is the first.
TEST_CASE("Removing in front of the newest moves the index along") {
    ModuleFixture fixture(WithUndos(3));
    fixture.Field();
    Commit(fixture.plugin, 1);
    Commit(fixture.plugin, 2);
    CHECK_EQ(fixture.plugin.undoIndex, 2);
    fixture.plugin.MaxUndos = 2;
    fixture.Field();
    CHECK_EQ(RingTags(fixture.plugin), Tags{0, 1});
    CHECK_EQ(fixture.plugin.undoIndex, 1);
}

TEST_CASE("Raising MaxUndos adds copies of the present canvas behind the newest; the index stays") {
    ModuleFixture fixture(WithUndos(2));
    fixture.Field();
    Commit(fixture.plugin, 1);
    Commit(fixture.plugin, 2);  // entries 1, 0, newest at 0
    CHECK_EQ(RingTags(fixture.plugin), Tags{1, 0});
    fixture.plugin.MaxUndos = 4;
    fixture.Field();
    CHECK_EQ(RingTags(fixture.plugin), Tags{1, 2, 2, 0});
    CHECK_EQ(fixture.plugin.undoIndex, 0);
}

TEST_CASE("A ring may go to nothing and come back") {
    ModuleFixture fixture(WithUndos(3));
    fixture.Field();
    Commit(fixture.plugin, 1);
    fixture.plugin.MaxUndos = 0;
    fixture.Field();
    CHECK(fixture.plugin.undoRing->empty());
    Commit(fixture.plugin, 2);
    fixture.plugin.MaxUndos = 3;
    fixture.Field();
    CHECK_EQ(RingTags(fixture.plugin), Tags{2, 2, 2});
    Commit(fixture.plugin, 3);
    RestoreUndoSnapshot(fixture.plugin);
    CHECK_EQ(CanvasTag(fixture.plugin), 2);
}

TEST_CASE("No value of MaxUndos makes a ring of less than 0 or more than 10") {
    ModuleFixture fixture(WithUndos(std::numeric_limits<std::int32_t>::max()));
    fixture.Field();
    CHECK_EQ(fixture.plugin.undoRing->size(), 10);
    fixture.plugin.MaxUndos = -5;
    fixture.Field();
    CHECK(fixture.plugin.undoRing->empty());
    PLUGIN_EXEC_ACTION(&fixture.plugin, 1);
    PLUGIN_EXEC_ACTION(&fixture.plugin, 0);
    fixture.plugin.MaxUndos = std::numeric_limits<std::int32_t>::min();
    fixture.Field();
    CHECK(fixture.plugin.undoRing->empty());
}

TEST_CASE("The ring is adjusted before anything else of the field looks at it") {
    ModuleFixture fixture(WithUndos(2));
    fixture.Field();
    fixture.plugin.MaxUndos = 5;
    fixture.plugin.TexUnit = 2;
    fixture.Field();
    CHECK_EQ(fixture.plugin.undoRing->size(), 5);
}

TEST_CASE("Undo in the middle of a stroke jumps back, and the stroke goes on") {
    ModuleFixture fixture;
    fixture.Field();
    fixture.Press(100, 100);
    fixture.Release(150, 100);
    fixture.Press(300, 300);
    fixture.Move(350, 300);
    PLUGIN_EXEC_ACTION(&fixture.plugin, 1);  // the ring's newest state is the blank canvas
    CHECK(IsBlank(*fixture.plugin.canvasSurface));
    fixture.Move(400, 350);
    fixture.Move(450, 350);
    CHECK_FALSE(IsBlank(*fixture.plugin.canvasSurface));
}

}  // namespace
}  // namespace chalkpane::testing
