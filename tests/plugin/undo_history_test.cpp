#include "plugin/undo_history.h"

#include <doctest/doctest.h>

#include <cstring>
#include <limits>
#include <vector>

#include "tests/plugin/stage.h"

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
    Stage stage(WithUndos(3));
    stage.Field();
    CHECK_EQ(RingTags(stage.plugin), Tags{0, 0, 0});
    CHECK_EQ(stage.plugin.undoIndex, 0);
    CHECK_EQ(TagOf(stage.plugin.currentSnapshot.get()), 0);
}

TEST_CASE("A push saves the state before it; the oldest is overwritten") {
    Stage stage(WithUndos(3));
    stage.Field();
    Commit(stage.plugin, 1);
    CHECK_EQ(stage.plugin.undoIndex, 1);
    Commit(stage.plugin, 2);
    CHECK_EQ(RingTags(stage.plugin), Tags{0, 0, 1});
    CHECK_EQ(stage.plugin.undoIndex, 2);
    Commit(stage.plugin, 3);
    CHECK_EQ(RingTags(stage.plugin), Tags{2, 0, 1});
    CHECK_EQ(stage.plugin.undoIndex, 0);
    CHECK_EQ(TagOf(stage.plugin.currentSnapshot.get()), 3);
}

TEST_CASE("Undo goes back state by state, then wraps and brings newer ones") {
    Stage stage(WithUndos(3));
    stage.Field();
    for (const int tag : {1, 2, 3}) Commit(stage.plugin, tag);
    Tags seen;
    for (int i = 0; i < 4; ++i) {
        RestoreUndoSnapshot(stage.plugin);
        seen.push_back(CanvasTag(stage.plugin));
        CHECK_EQ(ShapeTag(stage.plugin), seen.back());
        CHECK_EQ(TagOf(stage.plugin.currentSnapshot.get()), seen.back());
    }
    CHECK_EQ(seen, Tags{2, 1, 0, 2});  // the slot of 0 was never written since creation
    CHECK(stage.plugin.fullUploadPending);
}

TEST_CASE("With one undo the same state comes back again and again") {
    Stage stage(WithUndos(1));
    stage.Field();
    Commit(stage.plugin, 1);
    Commit(stage.plugin, 2);
    for (int i = 0; i < 2; ++i) {
        RestoreUndoSnapshot(stage.plugin);
        CHECK_EQ(CanvasTag(stage.plugin), 1);
        CHECK_EQ(stage.plugin.undoIndex, 0);
    }
}

TEST_CASE("Without undos pushes renew the snapshot, and undo does nothing") {
    Stage stage(WithUndos(0));
    stage.Field();
    Commit(stage.plugin, 5);
    CHECK_EQ(TagOf(stage.plugin.currentSnapshot.get()), 5);
    stage.plugin.fullUploadPending = false;
    RestoreUndoSnapshot(stage.plugin);
    CHECK_EQ(CanvasTag(stage.plugin), 5);
    CHECK_FALSE(stage.plugin.fullUploadPending);
}

TEST_CASE("Clear can be taken back") {
    Stage stage(WithUndos(3));
    stage.Field();
    Commit(stage.plugin, 1);
    Fill(*stage.plugin.shapeSurface, 1);
    stage.plugin.fullUploadPending = false;
    PLUGIN_EXEC_ACTION(&stage.plugin, 0);
    CHECK(IsBlank(*stage.plugin.canvasSurface));
    CHECK(IsBlank(*stage.plugin.shapeSurface));
    CHECK_EQ(RingTags(stage.plugin), Tags{0, 0, 1});
    CHECK_EQ(TagOf(stage.plugin.currentSnapshot.get()), 0);
    CHECK(stage.plugin.fullUploadPending);
    PLUGIN_EXEC_ACTION(&stage.plugin, 1);
    CHECK_EQ(CanvasTag(stage.plugin), 1);
    CHECK_EQ(ShapeTag(stage.plugin), 1);
}

TEST_CASE("Clear without undos clears and counts nothing") {
    Stage stage(WithUndos(0));
    stage.Field();
    Commit(stage.plugin, 5);
    ClearCanvas(stage.plugin);
    CHECK(IsBlank(*stage.plugin.canvasSurface));
    CHECK_EQ(stage.plugin.undoIndex, 0);
    CHECK_EQ(TagOf(stage.plugin.currentSnapshot.get()), 0);
}

TEST_CASE("Actions before the first field and unknown actions do nothing") {
    Stage stage(WithUndos(2));
    PLUGIN_EXEC_ACTION(&stage.plugin, 0);
    PLUGIN_EXEC_ACTION(&stage.plugin, 1);
    CHECK(stage.host.calls.empty());
    CHECK_FALSE(stage.plugin.fullUploadPending);
    stage.Field();
    Commit(stage.plugin, 7);
    PLUGIN_EXEC_ACTION(&stage.plugin, 2);
    PLUGIN_EXEC_ACTION(&stage.plugin, -1);
    CHECK_EQ(CanvasTag(stage.plugin), 7);
}

// Commits 1, 2, 3, 4 into a ring of four: entries 3, 0, 1, 2 with the newest at 0, the oldest behind it.
TEST_CASE("Lowering MaxUndos removes the oldest states first") {
    Stage stage(WithUndos(4));
    stage.Field();
    for (const int tag : {1, 2, 3, 4}) Commit(stage.plugin, tag);
    CHECK_EQ(RingTags(stage.plugin), Tags{3, 0, 1, 2});
    stage.plugin.MaxUndos = 2;
    stage.Field();
    CHECK_EQ(RingTags(stage.plugin), Tags{3, 2});
    CHECK_EQ(stage.plugin.undoIndex, 0);
}

// Commits 1, 2 into a ring of three: entries 0, 0, 1, the newest at the end, so the oldest is the first.
TEST_CASE("Removing in front of the newest moves the index along") {
    Stage stage(WithUndos(3));
    stage.Field();
    Commit(stage.plugin, 1);
    Commit(stage.plugin, 2);
    CHECK_EQ(stage.plugin.undoIndex, 2);
    stage.plugin.MaxUndos = 2;
    stage.Field();
    CHECK_EQ(RingTags(stage.plugin), Tags{0, 1});
    CHECK_EQ(stage.plugin.undoIndex, 1);
}

TEST_CASE("Raising MaxUndos adds copies of the present canvas behind the newest; the index stays") {
    Stage stage(WithUndos(2));
    stage.Field();
    Commit(stage.plugin, 1);
    Commit(stage.plugin, 2);  // entries 1, 0, newest at 0
    CHECK_EQ(RingTags(stage.plugin), Tags{1, 0});
    stage.plugin.MaxUndos = 4;
    stage.Field();
    CHECK_EQ(RingTags(stage.plugin), Tags{1, 2, 2, 0});
    CHECK_EQ(stage.plugin.undoIndex, 0);
}

TEST_CASE("A ring may go to nothing and come back") {
    Stage stage(WithUndos(3));
    stage.Field();
    Commit(stage.plugin, 1);
    stage.plugin.MaxUndos = 0;
    stage.Field();
    CHECK(stage.plugin.undoRing->empty());
    Commit(stage.plugin, 2);
    stage.plugin.MaxUndos = 3;
    stage.Field();
    CHECK_EQ(RingTags(stage.plugin), Tags{2, 2, 2});
    Commit(stage.plugin, 3);
    RestoreUndoSnapshot(stage.plugin);
    CHECK_EQ(CanvasTag(stage.plugin), 2);
}

TEST_CASE("No value of MaxUndos makes a ring of less than 0 or more than 10") {
    Stage stage(WithUndos(std::numeric_limits<std::int32_t>::max()));
    stage.Field();
    CHECK_EQ(stage.plugin.undoRing->size(), 10);
    stage.plugin.MaxUndos = -5;
    stage.Field();
    CHECK(stage.plugin.undoRing->empty());
    PLUGIN_EXEC_ACTION(&stage.plugin, 1);
    PLUGIN_EXEC_ACTION(&stage.plugin, 0);
    stage.plugin.MaxUndos = std::numeric_limits<std::int32_t>::min();
    stage.Field();
    CHECK(stage.plugin.undoRing->empty());
}

TEST_CASE("The ring is adjusted before anything else of the field looks at it") {
    Stage stage(WithUndos(2));
    stage.Field();
    stage.plugin.MaxUndos = 5;
    stage.plugin.TexUnit = 2;
    stage.Field();
    CHECK_EQ(stage.plugin.undoRing->size(), 5);
}

TEST_CASE("Undo in the middle of a stroke jumps back, and the stroke goes on") {
    Stage stage;
    stage.Field();
    stage.Press(100, 100);
    stage.Release(150, 100);
    stage.Press(300, 300);
    stage.Move(350, 300);
    PLUGIN_EXEC_ACTION(&stage.plugin, 1);  // the ring's newest state is the blank canvas
    CHECK(IsBlank(*stage.plugin.canvasSurface));
    stage.Move(400, 350);
    stage.Move(450, 350);
    CHECK_FALSE(IsBlank(*stage.plugin.canvasSurface));
}

}  // namespace
}  // namespace chalkpane::testing
