#include <doctest/doctest.h>

#include <functional>
#include <string>
#include <vector>

#include "plugin/brush_mode.h"
#include "plugin/canvas_texture.h"
#include "plugin/shape_recognition.h"
#include "plugin/stroke_finish.h"
#include "plugin/undo_history.h"
#include "tests/plugin/allocation_failure.h"
#include "tests/plugin/stage.h"
#include "tests/plugin/stroke_shapes.h"

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
    Stage stage(Values(1));
    stage.Field();
    stage.Press(100, 100);
    stage.Release(200, 200);
    stage.plugin.BrushType = 1;
    PLUGIN_CHANGED_CALLBACK(&stage.plugin, 5);
    stage.Press(100, 100);
    stage.Release(200, 200);
}

void CheckStillPaints(Stage& stage) {
    stage.Fields(2);
    REQUIRE_NE(stage.plugin.canvasSurface, nullptr);
    PLUGIN_EXEC_ACTION(&stage.plugin, 0);
    stage.plugin.BrushType = 0;
    PLUGIN_CHANGED_CALLBACK(&stage.plugin, 5);
    stage.Press(600, 600);
    stage.Move(640, 600);
    stage.Release(660, 600);
    CHECK_GT(AlphaAt(*stage.plugin.canvasSurface, 620, 600), 0);
    CHECK_EQ(stage.PreRender(), 1);
    CHECK_EQ(stage.PostRender(), 1);
}

// Fails the first allocation of `action`, then the second, and so on until it gets through; of the many that a stroke's
// dabs make alike, later ones in strides. `check` sees the instance after each failure and what was printed.
enum class Kind { Each, Dabs };
constexpr std::int64_t Next(std::int64_t number, Kind kind) {
    return number + (kind == Kind::Dabs && number >= 30 ? 1 + number / 10 : 1);
}

void FailEach(std::int32_t recognises, const std::function<void(Stage&)>& prepare,
              const std::function<void(Stage&)>& action, const std::function<void(Stage&, const std::string&)>& check,
              Kind kind = Kind::Each) {
    WarmUp();
    constexpr std::int64_t enough = 20000;
    std::int64_t failures = 0;
    for (; failures < enough; failures = Next(failures, kind)) {
        Stage stage(Values(recognises));
        stage.host.recording = false;
        prepare(stage);
        OutputCapture output;
        bool failed = false;
        {
            const AllocationFailure failure(failures);
            action(stage);
            failed = failure.HasFailed();
        }
        const std::string printed = output.Stop();
        if (!failed) break;
        INFO("allocation ", failures);
        check(stage, printed);
        CheckStillPaints(stage);
    }
    CHECK_GT(failures, 0);
    CHECK_LT(failures, enough);
}

const auto firstField = [](Stage& stage) { stage.Field(); };

TEST_CASE("A canvas that cannot be made leaves nothing behind, and the next field tries again") {
    const auto nothing = [](Stage&) {};
    FailEach(0, nothing, firstField, [](Stage& stage, const std::string& printed) {
        if (stage.plugin.canvasSurface) return;  // failed behind the creation
        CHECK_EQ(printed, noMemoryMessage);
        CHECK_EQ(stage.plugin.shapeSurface, nullptr);
        CHECK_EQ(stage.plugin.undoRing, nullptr);
        CHECK_EQ(stage.plugin.currentSnapshot, nullptr);
        CHECK_EQ(stage.plugin.canvasTexture.id, -1);
        CHECK_EQ(stage.plugin.canvasImage.id, -1);
    });
}

TEST_CASE("The clean-up after a failed creation tells the host what goes, marking it first") {
    WarmUp();
    Stage stage(Values(0));
    stage.plugin.canvasTexture.id = 51;  // both from an earlier attempt
    stage.plugin.canvasImage.id = 41;
    OutputCapture output;
    bool created = true;
    {
        const AllocationFailure failure(0);
        created = CreateCanvas(stage.plugin);
    }
    CHECK_FALSE(created);
    CHECK_EQ(output.Stop(), noMemoryMessage);
    CHECK_EQ(stage.plugin.canvasTexture.id, -1);
    CHECK_EQ(stage.plugin.canvasImage.id, -1);
    CHECK_EQ(
        stage.host.TakeCalls(),
        std::vector<std::string>{"_api__object_valid 51", "_api__set_changed 51", "_api__texture_delete_texture 51",
                                 "_api__object_valid 41", "_api__set_changed 41", "_api__image_delete_image 41",
                                 "_api__get_objectid_local 0 2", "_api__container_delete_texture 7"});
}

TEST_CASE("A field without a canvas goes straight to its redraw") {
    WarmUp();
    Stage stage(Values(0));
    stage.host.recording = false;
    OutputCapture output;
    {
        const AllocationFailure failure(0);
        stage.Field();
    }
    CHECK_EQ(output.Stop(), noMemoryMessage);
    CHECK_EQ(stage.plugin.canvasSurface, nullptr);
    CHECK_EQ(stage.plugin.lastTexUnit, -1);
    CHECK_EQ(stage.host.redraws, 1);
}

TEST_CASE("Recognition buffers that cannot be made leave their flag clear") {
    FailEach(
        0, firstField, [](Stage& stage) { SizeRecognitionBuffers(stage.plugin, true); },
        [](Stage& stage, const std::string& printed) {
            CHECK_EQ(printed, noMemoryMessage);
            CHECK_FALSE(stage.plugin.recognitionBuffersReady);
            CHECK_EQ(stage.plugin.strokePoints, nullptr);
            CHECK_EQ(stage.plugin.houghAccumulator, nullptr);
            CHECK_FALSE(RecognizeEllipse(stage.plugin));
            CHECK_FALSE(RecognizeCircle(stage.plugin));
            CHECK_FALSE(RecognizeCross(stage.plugin));
        });
}

TEST_CASE("A ring that cannot grow stays as far as it came and ends the field without a redraw") {
    FailEach(
        0,
        [](Stage& stage) {
            stage.Field();
            stage.plugin.MaxUndos = 5;
            stage.plugin.TexUnit = 2;
        },
        firstField,
        [](Stage& stage, const std::string& printed) {
            CHECK_EQ(printed, noMemoryMessage);
            CHECK_GE(stage.plugin.undoRing->size(), 2);
            CHECK_LT(stage.plugin.undoRing->size(), 5);
            CHECK_EQ(stage.plugin.lastTexUnit, 1);  // the steps behind it did not run
            CHECK_EQ(stage.host.redraws, 1);        // the first field's
            stage.Field();
            CHECK_EQ(stage.plugin.undoRing->size(), 5);
            CHECK_EQ(stage.plugin.lastTexUnit, 2);
        });
}

TEST_CASE("A brush mode that cannot be applied is survived") {
    FailEach(
        0,
        [](Stage& stage) {
            stage.Field();
            stage.plugin.BrushType = 1;
        },
        [](Stage& stage) { ApplyBrushMode(stage.plugin); },
        [](Stage& stage, const std::string& printed) {
            CHECK((printed.empty() || printed == noMemoryMessage));
            CHECK_NE(stage.plugin.canvasSurface, nullptr);
        });
}

TEST_CASE("A changed width that cannot be applied is tried again") {
    FailEach(
        0,
        [](Stage& stage) {
            stage.Field();
            stage.plugin.BrushWidth = 17;
        },
        firstField,
        [](Stage& stage, const std::string& printed) {
            CHECK((printed.empty() || printed == noMemoryMessage));
            stage.Field();
            CHECK_EQ(stage.plugin.lastBrushWidth, 17);
        });
}

TEST_CASE("A changed colour that cannot be applied is tried again") {
    FailEach(
        0,
        [](Stage& stage) {
            stage.Field();
            stage.plugin.BrushColor = 0xFF112233;
        },
        firstField,
        [](Stage& stage, const std::string& printed) {
            CHECK((printed.empty() || printed == noMemoryMessage));
            stage.Field();
            CHECK_EQ(stage.plugin.lastBrushColor, 0xFF112233U);
        });
}

TEST_CASE("A brush image that cannot be loaded is survived") {
    FailEach(
        0,
        [](Stage& stage) {
            stage.host.imageIds["ball"] = 60;
            stage.host.brushImageWidth = 300;
            stage.host.brushImageHeight = 301;
            stage.host.brushImageFormat = 6407;
            stage.host.brushImagePixels.assign(300 * 301 * 3, 99);
            stage.Field();
            stage.plugin.BrushImage = "ball";
        },
        firstField,
        [](Stage& stage, const std::string& printed) {
            CHECK((printed.empty() || printed == noMemoryMessage));
            stage.plugin.BrushImage = "";
        });
}

TEST_CASE("A stroke that runs out of memory goes on") {
    FailEach(
        0, firstField,
        [](Stage& stage) {
            stage.Press(100, 100);
            stage.Move(200, 150);
            stage.Release(300, 100);
        },
        [](Stage& stage, const std::string& printed) {
            CHECK((printed.empty() || printed == noMemoryMessage));
            CHECK_FALSE(stage.plugin.pointerInsideStroke);
            CHECK_FALSE(stage.plugin.pointerDown);
        },
        Kind::Dabs);
}

TEST_CASE("A stroke to be recognised whose buffers cannot be made is drawn all the same") {
    FailEach(
        1,
        [](Stage& stage) {
            stage.Field();
            SizeRecognitionBuffers(stage.plugin, false);
        },
        [](Stage& stage) {
            stage.Press(100, 100);
            stage.Release(300, 100);
        },
        [](Stage& stage, const std::string& printed) {
            CHECK((printed.empty() || printed.substr(0, noMemoryMessage.size()) == noMemoryMessage));
            CHECK_FALSE(stage.plugin.pointerInsideStroke);
        },
        Kind::Dabs);
}

TEST_CASE("A finish that runs out of memory ends, whatever the stroke was") {
    for (const Points& points :
         {EllipsePoints(500, 500, 60, 40, 0, 60), CrossPoints(500, 500, 50, 40), WavePoints(100, 300, 100, 30)}) {
        FailEach(
            1,
            [&](Stage& stage) {
                stage.plugin.RecoCircle = 1;
                stage.Field();
                StoreStroke(stage.plugin, points);
            },
            [](Stage& stage) { FinishStroke(stage.plugin); },
            [](Stage& stage, const std::string& printed) {
                CHECK((printed.empty() || printed.substr(0, noMemoryMessage.size()) == noMemoryMessage));
                CHECK(stage.plugin.shapeCommitPending);
                stage.plugin.shapeCommitPending = false;
            },
            Kind::Dabs);
    }
}

}  // namespace
}  // namespace chalkpane::testing
