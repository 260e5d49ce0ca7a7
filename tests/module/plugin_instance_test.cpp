#include "module/plugin_instance.h"

#include <doctest/doctest.h>

#include "tests/module/module_fixture.h"
#include "tests/telestrator/allocation_failure.h"

namespace chalkpane::testing {
namespace {

// 20 fields of four bytes, but the name's address is eight bytes wide and aligned to eight:
// 5 * 4 = 20, rounded up to 24; 24 + 8 = 32; 32 + 14 * 4 = 88.
TEST_CASE("The host finds the parameters at their natural offsets") {
    if (sizeof(void*) != 8) return;
    CHECK_EQ(offsetof(PluginParameters, BrushImage), 24);
    CHECK_EQ(offsetof(PluginParameters, BrushWidth), 32);
    CHECK_EQ(offsetof(PluginParameters, MaxUndos), 84);
    CHECK_EQ(sizeof(PluginParameters), 88);
}

TEST_CASE("The block fits the registered size with pointers of either width") {
    CHECK_LE(sizeof(PluginInstance), 1392);
    CHECK_LE(sizeof(InstanceBlockLayout<std::uint32_t>), 1392);
    CHECK_LE(sizeof(InstanceBlockLayout<std::uint64_t>), 1392);
}

TEST_CASE("Construction leaves the parameters alone and sets every other field") {
    PluginParameters values = DefaultParameters();
    values.Alpha = 12.5F;
    values.MaxUndos = 3;
    values.CircleRadius = 77;
    ModuleFixture fixture(values);
    const PluginInstance& plugin = fixture.plugin;
    CHECK_EQ(static_cast<const void*>(&plugin), static_cast<const void*>(fixture.block.data()));
    CHECK_EQ(plugin.Active, 1);
    CHECK_EQ(plugin.Alpha, 12.5F);
    CHECK_EQ(plugin.BrushColor, 0xF0000000U);
    CHECK_EQ(plugin.MaxUndos, 3);
    CHECK_EQ(plugin.CircleRadius, 77);

    CHECK_EQ(plugin.telestrator.canvasSurface, nullptr);
    CHECK_EQ(plugin.telestrator.shapeSurface, nullptr);
    CHECK_FALSE(plugin.pointerInsideStroke);
    CHECK_EQ(plugin.lastTexUnit, -1);
    CHECK_EQ(plugin.canvasImage.id, -1);
    CHECK_EQ(plugin.canvasTexture.id, -1);
    CHECK_EQ(plugin.telestrator.lastBrushWidth, -1);
    CHECK_EQ(plugin.telestrator.lastEraserWidth, -1);
    CHECK_EQ(plugin.telestrator.lastBrushColor, 0U);
    CHECK_EQ(plugin.windowWidth, -1);
    CHECK_EQ(plugin.windowHeight, -1);
    CHECK_EQ(plugin.lastPointerX, -1);
    CHECK_EQ(plugin.lastPointerY, -1);
    CHECK_EQ(plugin.telestrator.canvasWidth, 1024);
    CHECK_EQ(plugin.telestrator.canvasHeight, 1024);
    CHECK_FALSE(plugin.pointerDown);
    CHECK_EQ(plugin.telestrator.dirtyRect, Rect(0, 0, -1, -1));
    CHECK_FALSE(plugin.telestrator.fullUploadPending);
    CHECK_EQ(plugin.brushImageHandle.id, -1);
    CHECK_EQ(std::string(plugin.lastBrushImageName.data()), "");
    CHECK_EQ(plugin.telestrator.lastStrokePoint, Vector3());
    CHECK_FALSE(plugin.telestrator.shapeCommitPending);
    CHECK_EQ(plugin.telestrator.strokePointCount, 0);
    CHECK_EQ(plugin.telestrator.strokePoints, nullptr);
    CHECK_EQ(plugin.telestrator.shapeCountdown, -1);
    CHECK_EQ(plugin.telestrator.undoIndex, 0);
    CHECK_EQ(plugin.telestrator.undoRing, nullptr);
    CHECK_EQ(plugin.telestrator.currentSnapshot, nullptr);
    CHECK_EQ(plugin.telestrator.houghAccumulator, nullptr);
    CHECK_EQ(plugin.telestrator.aspect, 0.0F);
    CHECK_FALSE(plugin.telestrator.recognitionBuffersReady);
}

TEST_CASE("Construction allocates nothing and asks the host nothing") {
    RecordingHost host;
    alignas(std::max_align_t) std::array<std::byte, instanceBlockSize> block{};
    void* address = block.data();
    PluginInstance* plugin = nullptr;
    std::int64_t allocations = -1;
    {
        const AllocationFailure none(AllocationFailure::never);
        plugin = PLUGIN_INIT_FUNCTION(static_cast<PluginInstance*>(address));
        allocations = none.Count();
    }
    CHECK_EQ(allocations, 0);
    CHECK(host.calls.empty());
    PLUGIN_CLEANUP_FUNCTION(plugin);
}

TEST_CASE("Clean-up deletes the texture, not the image, and frees everything else") {
    PluginParameters values = DefaultParameters();
    values.RecoShapes = 1;
    {
        ModuleFixture warmUp(values);
        warmUp.Field();
    }
    const std::int32_t before = Image::LivingImages();
    ModuleFixture fixture(values);
    fixture.Field();
    fixture.Press(100, 100);
    fixture.Release(200, 200);
    CHECK_GT(Image::LivingImages(), before);
    fixture.host.TakeCalls();
    fixture.CleanUp();
    CHECK_EQ(fixture.host.TakeCalls(),
             std::vector<std::string>{"_api__object_valid 50", "_api__texture_delete_texture 50"});
    CHECK_EQ(Image::LivingImages(), before);
}

TEST_CASE("Clean-up before the first field asks the host for nothing") {
    ModuleFixture fixture;
    fixture.CleanUp();
    CHECK(fixture.host.calls.empty());
}

TEST_CASE("The keyboard has no function") {
    ModuleFixture fixture;
    fixture.Field();
    fixture.host.TakeCalls();
    PLUGIN_KEYBOARD_CALLBACK(&fixture.plugin);
    CHECK(fixture.host.calls.empty());
}

}  // namespace
}  // namespace chalkpane::testing
