#include <doctest/doctest.h>

#include <functional>
#include <string>
#include <vector>

#include "module/brush_mode.h"
#include "module/canvas_texture.h"
#include "telestrator/recognition/shape_recognition.h"
#include "telestrator/telestrator.h"
#include "tests/module/module_fixture.h"
#include "tests/telestrator/allocation_failure.h"
#include "tests/telestrator/stroke_shapes.h"

namespace chalkpane::testing {
namespace {

PluginParameters Values(std::int32_t recognises) {
    PluginParameters values = DefaultParameters();
    values.RecoShapes = recognises;
    values.MaxUndos = 2;
    values.ShapeDelay = 1;
    return values;
}

// The engine builds the tables of its classes once; what they take is not what is tested here.
void WarmUp() {
    ModuleFixture fixture(Values(1));
    fixture.Field();
    fixture.Press(100, 100);
    fixture.Release(200, 200);
    fixture.plugin.BrushType = 1;
    PLUGIN_CHANGED_CALLBACK(&fixture.plugin, 5);
    fixture.Press(100, 100);
    fixture.Release(200, 200);
}

void CheckStillPaints(ModuleFixture& fixture) {
    fixture.Fields(2);
    REQUIRE_NE(fixture.plugin.telestrator.canvasSurface, nullptr);
    PLUGIN_EXEC_ACTION(&fixture.plugin, 0);
    fixture.plugin.BrushType = 0;
    PLUGIN_CHANGED_CALLBACK(&fixture.plugin, 5);
    fixture.Press(600, 600);
    fixture.Move(640, 600);
    fixture.Release(660, 600);
    CHECK_GT(AlphaAt(*fixture.plugin.telestrator.canvasSurface, 620, 600), 0);
    CHECK_EQ(fixture.PreRender(), 1);
    CHECK_EQ(fixture.PostRender(), 1);
}

// Fails the first allocation of `action`, then the second, and so on until it gets through; of the many that a stroke's
// dabs make alike, later ones in strides. `check` sees the instance after each failure and what was printed.
enum class Kind { Each, Dabs };
constexpr std::int64_t Next(std::int64_t number, Kind kind) {
    return number + (kind == Kind::Dabs && number >= 30 ? 1 + number / 10 : 1);
}

void FailEach(std::int32_t recognises, const std::function<void(ModuleFixture&)>& prepare,
              const std::function<void(ModuleFixture&)>& action,
              const std::function<void(ModuleFixture&, const std::string&)>& check, Kind kind = Kind::Each) {
    WarmUp();
    constexpr std::int64_t enough = 20000;
    std::int64_t failures = 0;
    for (; failures < enough; failures = Next(failures, kind)) {
        ModuleFixture fixture(Values(recognises));
        fixture.host.recording = false;
        prepare(fixture);
        OutputCapture output;
        bool failed = false;
        {
            const AllocationFailure failure(failures);
            action(fixture);
            failed = failure.HasFailed();
        }
        const std::string printed = output.Stop();
        if (!failed) break;
        INFO("allocation ", failures);
        check(fixture, printed);
        CheckStillPaints(fixture);
    }
    CHECK_GT(failures, 0);
    CHECK_LT(failures, enough);
}

const auto firstField = [](ModuleFixture& fixture) { fixture.Field(); };

TEST_CASE("A canvas that cannot be made leaves nothing behind, and the next field tries again") {
    const auto nothing = [](ModuleFixture&) {};
    FailEach(0, nothing, firstField, [](ModuleFixture& fixture, const std::string& printed) {
        if (fixture.plugin.telestrator.canvasSurface) return;  // failed behind the creation
        CHECK_EQ(printed, noMemoryMessage);
        CHECK_EQ(fixture.plugin.telestrator.shapeSurface, nullptr);
        CHECK_EQ(fixture.plugin.telestrator.undoRing, nullptr);
        CHECK_EQ(fixture.plugin.telestrator.currentSnapshot, nullptr);
        CHECK_EQ(fixture.plugin.canvasTexture.id, -1);
        CHECK_EQ(fixture.plugin.canvasImage.id, -1);
    });
}

TEST_CASE("The clean-up after a failed creation tells the host what goes, marking it first") {
    WarmUp();
    ModuleFixture fixture(Values(0));
    fixture.plugin.canvasTexture.id = 51;  // both from an earlier attempt
    fixture.plugin.canvasImage.id = 41;
    OutputCapture output;
    bool created = true;
    {
        const AllocationFailure failure(0);
        created = CreateCanvas(fixture.plugin);
    }
    CHECK_FALSE(created);
    CHECK_EQ(output.Stop(), noMemoryMessage);
    CHECK_EQ(fixture.plugin.canvasTexture.id, -1);
    CHECK_EQ(fixture.plugin.canvasImage.id, -1);
    CHECK_EQ(
        fixture.host.TakeCalls(),
        std::vector<std::string>{"_api__object_valid 51", "_api__set_changed 51", "_api__texture_delete_texture 51",
                                 "_api__object_valid 41", "_api__set_changed 41", "_api__image_delete_image 41",
                                 "_api__get_objectid_local 0 2", "_api__container_delete_texture 7"});
}

TEST_CASE("A field without a canvas goes straight to its redraw") {
    WarmUp();
    ModuleFixture fixture(Values(0));
    fixture.host.recording = false;
    OutputCapture output;
    {
        const AllocationFailure failure(0);
        fixture.Field();
    }
    CHECK_EQ(output.Stop(), noMemoryMessage);
    CHECK_EQ(fixture.plugin.telestrator.canvasSurface, nullptr);
    CHECK_EQ(fixture.plugin.lastTexUnit, -1);
    CHECK_EQ(fixture.host.redraws, 1);
}

TEST_CASE("Recognition buffers that cannot be made leave their flag clear") {
    FailEach(
        0, firstField, [](ModuleFixture& fixture) { SizeRecognitionBuffers(fixture.plugin, true); },
        [](ModuleFixture& fixture, const std::string& printed) {
            CHECK_EQ(printed, noMemoryMessage);
            CHECK_FALSE(fixture.plugin.telestrator.recognitionBuffersReady);
            CHECK_EQ(fixture.plugin.telestrator.strokePoints, nullptr);
            CHECK_EQ(fixture.plugin.telestrator.houghAccumulator, nullptr);
            CHECK_FALSE(RecognizeEllipse(Input(fixture.plugin)));
            CHECK_FALSE(RecognizeCircle(Input(fixture.plugin)));
            CHECK_FALSE(RecognizeCross(Input(fixture.plugin)));
        });
}

TEST_CASE("A ring that cannot grow stays as far as it came and ends the field without a redraw") {
    FailEach(
        0,
        [](ModuleFixture& fixture) {
            fixture.Field();
            fixture.plugin.MaxUndos = 5;
            fixture.plugin.TexUnit = 2;
        },
        firstField,
        [](ModuleFixture& fixture, const std::string& printed) {
            CHECK_EQ(printed, noMemoryMessage);
            CHECK_GE(fixture.plugin.telestrator.undoRing->size(), 2);
            CHECK_LT(fixture.plugin.telestrator.undoRing->size(), 5);
            CHECK_EQ(fixture.plugin.lastTexUnit, 1);  // the steps behind it did not run
            CHECK_EQ(fixture.host.redraws, 1);        // the first field's
            fixture.Field();
            CHECK_EQ(fixture.plugin.telestrator.undoRing->size(), 5);
            CHECK_EQ(fixture.plugin.lastTexUnit, 2);
        });
}

TEST_CASE("A brush mode that cannot be applied is survived") {
    FailEach(
        0,
        [](ModuleFixture& fixture) {
            fixture.Field();
            fixture.plugin.BrushType = 1;
        },
        [](ModuleFixture& fixture) { ApplyBrushMode(fixture.plugin); },
        [](ModuleFixture& fixture, const std::string& printed) {
            CHECK((printed.empty() || printed == noMemoryMessage));
            CHECK_NE(fixture.plugin.telestrator.canvasSurface, nullptr);
        });
}

TEST_CASE("A changed width that cannot be applied is tried again") {
    FailEach(
        0,
        [](ModuleFixture& fixture) {
            fixture.Field();
            fixture.plugin.BrushWidth = 17;
        },
        firstField,
        [](ModuleFixture& fixture, const std::string& printed) {
            CHECK((printed.empty() || printed == noMemoryMessage));
            fixture.Field();
            CHECK_EQ(fixture.plugin.telestrator.lastBrushWidth, 17);
        });
}

TEST_CASE("A changed colour that cannot be applied is tried again") {
    FailEach(
        0,
        [](ModuleFixture& fixture) {
            fixture.Field();
            fixture.plugin.BrushColor = 0xFF112233;
        },
        firstField,
        [](ModuleFixture& fixture, const std::string& printed) {
            CHECK((printed.empty() || printed == noMemoryMessage));
            fixture.Field();
            CHECK_EQ(fixture.plugin.telestrator.lastBrushColor, 0xFF112233U);
        });
}

TEST_CASE("A brush image that cannot be loaded is survived") {
    FailEach(
        0,
        [](ModuleFixture& fixture) {
            fixture.host.imageIds["ball"] = 60;
            fixture.host.brushImageWidth = 300;
            fixture.host.brushImageHeight = 301;
            fixture.host.brushImageFormat = 6407;
            fixture.host.brushImagePixels.assign(300 * 301 * 3, 99);
            fixture.Field();
            fixture.plugin.BrushImage = "ball";
        },
        firstField,
        [](ModuleFixture& fixture, const std::string& printed) {
            CHECK((printed.empty() || printed == noMemoryMessage));
            fixture.plugin.BrushImage = "";
        });
}

TEST_CASE("A stroke that runs out of memory goes on") {
    FailEach(
        0, firstField,
        [](ModuleFixture& fixture) {
            fixture.Press(100, 100);
            fixture.Move(200, 150);
            fixture.Release(300, 100);
        },
        [](ModuleFixture& fixture, const std::string& printed) {
            CHECK((printed.empty() || printed == noMemoryMessage));
            CHECK_FALSE(fixture.plugin.pointerInsideStroke);
            CHECK_FALSE(fixture.plugin.pointerDown);
        },
        Kind::Dabs);
}

TEST_CASE("A stroke to be recognised whose buffers cannot be made is drawn all the same") {
    FailEach(
        1,
        [](ModuleFixture& fixture) {
            fixture.Field();
            SizeRecognitionBuffers(fixture.plugin, false);
        },
        [](ModuleFixture& fixture) {
            fixture.Press(100, 100);
            fixture.Release(300, 100);
        },
        [](ModuleFixture& fixture, const std::string& printed) {
            CHECK((printed.empty() || printed.substr(0, noMemoryMessage.size()) == noMemoryMessage));
            CHECK_FALSE(fixture.plugin.pointerInsideStroke);
        },
        Kind::Dabs);
}

TEST_CASE("A finish that runs out of memory ends, whatever the stroke was") {
    for (const Points& points :
         {EllipsePoints(500, 500, 60, 40, 0, 60), CrossPoints(500, 500, 50, 40), WavePoints(100, 300, 100, 30)}) {
        FailEach(
            1,
            [&](ModuleFixture& fixture) {
                fixture.plugin.RecoCircle = 1;
                fixture.Field();
                StoreStroke(fixture.plugin.telestrator, points);
            },
            [](ModuleFixture& fixture) { FinishStroke(fixture.plugin); },
            [](ModuleFixture& fixture, const std::string& printed) {
                CHECK((printed.empty() || printed.substr(0, noMemoryMessage.size()) == noMemoryMessage));
                CHECK(fixture.plugin.telestrator.shapeCommitPending);
                fixture.plugin.telestrator.shapeCommitPending = false;
            },
            Kind::Dabs);
    }
}

}  // namespace
}  // namespace chalkpane::testing
