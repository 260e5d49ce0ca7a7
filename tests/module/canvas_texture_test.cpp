#include "module/canvas_texture.h"

#include <doctest/doctest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "tests/module/module_fixture.h"

namespace chalkpane::testing {
namespace {

using Lines = std::vector<std::string>;

// OpenGL's numbers, by their OpenGL names.
enum Gl : std::int32_t {
    GL_ADD = 0x0104,
    GL_SRC_COLOR = 0x0300,
    GL_SRC_ALPHA = 0x0302,
    GL_ONE_MINUS_SRC_ALPHA = 0x0303,
    GL_ALPHA_TEST = 0x0BC0,
    GL_BLEND_DST = 0x0BE0,
    GL_BLEND_SRC = 0x0BE1,
    GL_BLEND = 0x0BE2,
    GL_UNPACK_ROW_LENGTH = 0x0CF2,
    GL_UNSIGNED_BYTE = 0x1401,
    GL_MODELVIEW = 0x1700,
    GL_TEXTURE = 0x1702,
    GL_RGBA = 0x1908,
    GL_REPLACE = 0x1E01,
    GL_MODULATE = 0x2100,
    GL_TEXTURE_ENV_MODE = 0x2200,
    GL_TEXTURE_ENV = 0x2300,
    GL_COMBINE = 0x8570,
    GL_COMBINE_RGB = 0x8571,
    GL_COMBINE_ALPHA = 0x8572,
    GL_INTERPOLATE = 0x8575,
    GL_PREVIOUS = 0x8578,
    GL_SOURCE0_RGB = 0x8580,
    GL_SOURCE1_RGB = 0x8581,
    GL_SOURCE2_RGB = 0x8582,
    GL_SOURCE0_ALPHA = 0x8588,
    GL_SOURCE1_ALPHA = 0x8589,
    GL_OPERAND0_RGB = 0x8590,
    GL_OPERAND1_RGB = 0x8591,
    GL_OPERAND2_RGB = 0x8592,
    GL_OPERAND0_ALPHA = 0x8598,
    GL_OPERAND1_ALPHA = 0x8599,
    GL_OPERAND2_ALPHA = 0x859A,
};

std::string Words(std::initializer_list<std::int32_t> numbers) {
    std::string text;
    for (const std::int32_t number : numbers) text.append(1, ' ').append(std::to_string(number));
    return text;
}
std::string Env(std::int32_t name, std::int32_t value) { return "glTexEnvi" + Words({GL_TEXTURE_ENV, name, value}); }

void Append(Lines& lines, const Lines& more) { lines.insert(lines.end(), more.begin(), more.end()); }

PluginParameters With(std::int32_t unit, std::int32_t transparent) {
    PluginParameters values = DefaultParameters();
    values.TexUnit = unit;
    values.Transparent = transparent;
    values.MaxUndos = 1;
    return values;
}

const Lines strokesOverBase{
    Env(GL_TEXTURE_ENV_MODE, GL_COMBINE), Env(GL_COMBINE_RGB, GL_INTERPOLATE),  Env(GL_COMBINE_ALPHA, GL_ADD),
    Env(GL_SOURCE0_RGB, GL_TEXTURE),      Env(GL_SOURCE0_ALPHA, GL_TEXTURE),    Env(GL_SOURCE1_RGB, GL_PREVIOUS),
    Env(GL_SOURCE1_ALPHA, GL_PREVIOUS),   Env(GL_SOURCE2_RGB, GL_TEXTURE),      Env(GL_OPERAND0_RGB, GL_SRC_COLOR),
    Env(GL_OPERAND0_ALPHA, GL_SRC_ALPHA), Env(GL_OPERAND1_RGB, GL_SRC_COLOR),   Env(GL_OPERAND1_ALPHA, GL_SRC_ALPHA),
    Env(GL_OPERAND2_RGB, GL_SRC_ALPHA),   Env(GL_OPERAND2_ALPHA, GL_SRC_ALPHA),
};
const Lines strokesCutByBase{
    Env(GL_TEXTURE_ENV_MODE, GL_COMBINE), Env(GL_COMBINE_RGB, GL_MODULATE),     Env(GL_COMBINE_ALPHA, GL_MODULATE),
    Env(GL_SOURCE0_RGB, GL_TEXTURE),      Env(GL_SOURCE0_ALPHA, GL_TEXTURE),    Env(GL_SOURCE1_RGB, GL_PREVIOUS),
    Env(GL_SOURCE1_ALPHA, GL_PREVIOUS),   Env(GL_OPERAND0_RGB, GL_SRC_COLOR),   Env(GL_OPERAND0_ALPHA, GL_SRC_ALPHA),
    Env(GL_OPERAND1_RGB, GL_SRC_ALPHA),   Env(GL_OPERAND1_ALPHA, GL_SRC_ALPHA),
};
const Lines coverPrevious{
    Env(GL_TEXTURE_ENV_MODE, GL_COMBINE), Env(GL_COMBINE_RGB, GL_MODULATE),
    Env(GL_COMBINE_ALPHA, GL_ADD),        Env(GL_SOURCE0_RGB, GL_PREVIOUS),
    Env(GL_SOURCE0_ALPHA, GL_PREVIOUS),   Env(GL_SOURCE1_RGB, GL_TEXTURE),
    Env(GL_SOURCE1_ALPHA, GL_TEXTURE),    Env(GL_OPERAND0_RGB, GL_SRC_COLOR),
    Env(GL_OPERAND0_ALPHA, GL_SRC_ALPHA), Env(GL_OPERAND1_RGB, GL_ONE_MINUS_SRC_ALPHA),
    Env(GL_OPERAND1_ALPHA, GL_SRC_ALPHA),
};
const Lines addStrokes{
    Env(GL_TEXTURE_ENV_MODE, GL_COMBINE), Env(GL_COMBINE_RGB, GL_ADD),          Env(GL_COMBINE_ALPHA, GL_REPLACE),
    Env(GL_SOURCE0_RGB, GL_PREVIOUS),     Env(GL_SOURCE0_ALPHA, GL_PREVIOUS),   Env(GL_SOURCE1_RGB, GL_TEXTURE),
    Env(GL_SOURCE1_ALPHA, GL_TEXTURE),    Env(GL_OPERAND0_RGB, GL_SRC_COLOR),   Env(GL_OPERAND0_ALPHA, GL_SRC_ALPHA),
    Env(GL_OPERAND1_RGB, GL_SRC_COLOR),   Env(GL_OPERAND1_ALPHA, GL_SRC_ALPHA),
};

// The box is 100 wide and 50 high in these tests: factors 1 and 2.
Lines MatrixOf(std::int32_t unit) {
    return {"glActiveTexture" + Words({unit}),
            "glMatrixMode" + Words({GL_TEXTURE}),
            "glLoadIdentity",
            "glTranslatef 0.5 0.5 0",
            "glScalef 1 2 1",
            "glMatrixMode" + Words({GL_MODELVIEW})};
}

const std::string fullUpload = "_api__image_subtexload" + Words({40, -1, 0, 0, 1024, 1024, GL_RGBA, GL_UNSIGNED_BYTE});

const Lines savedAndSet{"glGetIntegerv" + Words({GL_BLEND}),
                        "glGetIntegerv" + Words({GL_ALPHA_TEST}),
                        "glGetIntegerv" + Words({GL_BLEND_SRC}),
                        "glGetIntegerv" + Words({GL_BLEND_DST}),
                        "glDisable" + Words({GL_ALPHA_TEST}),
                        "glEnable" + Words({GL_BLEND}),
                        "glBlendFunc" + Words({1, GL_ONE_MINUS_SRC_ALPHA})};

Lines FirstRender(std::int32_t unit, std::int32_t transparent) {
    ModuleFixture fixture(With(unit, transparent));
    fixture.host.box = {-50, -25, 0, 50, 25, 0};
    fixture.Field();
    fixture.host.TakeCalls();
    CHECK_EQ(fixture.PreRender(), 1);
    return fixture.host.TakeCalls();
}

TEST_CASE("Base texture: the strokes lie over the container's own look") {
    Lines wanted{"_api__object_valid 50", "_api__object_valid 40", "glActiveTexture 0"};
    Append(wanted, strokesOverBase);
    Append(wanted, {fullUpload});
    Append(wanted, MatrixOf(0));
    Append(wanted, MatrixOf(1));
    Append(wanted, {"glActiveTexture 0"});
    CHECK_EQ(FirstRender(0, 0), wanted);
}

TEST_CASE("Transparent base: the base cuts out the strokes and the container is blended") {
    Lines wanted{"_api__object_valid 50", "_api__object_valid 40", "glActiveTexture 0"};
    Append(wanted, strokesCutByBase);
    Append(wanted, {fullUpload});
    Append(wanted, MatrixOf(0));
    Append(wanted, MatrixOf(1));
    Append(wanted, {"glActiveTexture 0"});
    Append(wanted, savedAndSet);
    CHECK_EQ(FirstRender(0, 1), wanted);
}

TEST_CASE("Multi-texture: two stages form the premultiplied over, whatever Transparent says") {
    for (const std::int32_t unit : {1, 2}) {
        Lines wanted{"_api__object_valid 50", "_api__object_valid 40", "glActiveTexture" + Words({unit})};
        Append(wanted, coverPrevious);
        Append(wanted, {"glActiveTexture" + Words({unit + 1})});
        Append(wanted, addStrokes);
        Append(wanted, {fullUpload});
        Append(wanted, MatrixOf(unit));
        Append(wanted, MatrixOf(unit + 1));
        Append(wanted, {"glActiveTexture 0"});
        CHECK_EQ(FirstRender(unit, 0), wanted);
        CHECK_EQ(FirstRender(unit, 1), wanted);
    }
}

TEST_CASE("Creation asks the host for image and texture in a fixed order") {
    ModuleFixture fixture(With(1, 1));
    fixture.plugin.canvasTexture.id = 99;  // one from before
    CHECK(CreateCanvas(fixture.plugin));
    CHECK_EQ(fixture.host.TakeCalls(),
             Lines{"_api__object_valid 99", "_api__texture_delete_texture 99", "_api__create_image -1 1024 1024 6408",
                   "_api__rebuild_texture 40", "_api__texture_create_texture 40", "_api__set_texture_env_type 50 8449",
                   "_api__texture_set_optimize 50 1", "_api__set_texture_qual_type 50 2",
                   "_api__set_texture_map_type 50 1", "_api__set_texture_wrap_type 50 10496", "_api__set_changed 50",
                   "_api__get_objectid_local 0 2", "_api__container_get_bounding_box 7"});
    CHECK_EQ(fixture.plugin.canvasImage.id, 40);
    CHECK_EQ(fixture.plugin.canvasTexture.id, 50);
}

TEST_CASE("Creation makes the recognition buffers only where they are asked for") {
    ModuleFixture without(With(1, 1));
    without.Field();
    CHECK_FALSE(without.plugin.telestrator.recognitionBuffersReady);
    PluginParameters values = With(1, 1);
    values.RecoShapes = 1;
    ModuleFixture with(values);
    with.Field();
    CHECK(with.plugin.telestrator.recognitionBuffersReady);
}

TEST_CASE("The first picture is spread over the box before any pointer event") {
    ModuleFixture fixture(With(1, 1));
    fixture.host.box = {-80, -20, 0, 80, 20, 0};
    fixture.Field();
    CHECK_EQ(fixture.plugin.telestrator.aspect, 4.0F);
    fixture.PreRender();
    CHECK_EQ(fixture.host.CallsOf("glScalef"), Lines{"glScalef 0.625 2.5 1", "glScalef 0.625 2.5 1"});
}

TEST_CASE("An image that the host cannot make leaves the GL part out") {
    ModuleFixture fixture(With(1, 1));
    fixture.host.createdImage = -3;
    fixture.Field();
    CHECK_EQ(fixture.plugin.canvasImage.id, -1);
    CHECK_EQ(fixture.host.CountCalls("_api__texture_create_texture"), 1);  // the texture steps go on
    fixture.host.TakeCalls();
    CHECK_EQ(fixture.PreRender(), 1);
    CHECK_EQ(fixture.host.TakeCalls(), Lines{"_api__object_valid 50"});
}

TEST_CASE("A change of unit takes the former off, binds the new on two, and uploads all") {
    ModuleFixture fixture(With(0, 1));
    fixture.Field();
    CHECK_EQ(fixture.host.CallsOf("_api__container_delete_multi_texture"), Lines{});
    CHECK_EQ(fixture.host.CallsOf("_api__container_set_multi_texture"),
             Lines{"_api__container_set_multi_texture 7 0 50"});
    CHECK(fixture.plugin.telestrator.fullUploadPending);
    fixture.plugin.telestrator.fullUploadPending = false;
    fixture.plugin.TexUnit = 2;
    fixture.host.TakeCalls();
    ApplyTextureUnit(fixture.plugin);
    CHECK_EQ(fixture.host.TakeCalls(),
             Lines{"_api__get_objectid_local 0 2", "_api__container_delete_multi_texture 7 0",
                   "_api__container_set_multi_texture 7 2 50", "_api__container_delete_multi_texture 7 3",
                   "_api__container_set_multi_texture 7 3 50"});
    CHECK_EQ(fixture.plugin.lastTexUnit, 2);
    CHECK(fixture.plugin.telestrator.fullUploadPending);
    // Back to the base texture: unit 3 is not taken off.
    fixture.plugin.TexUnit = 0;
    ApplyTextureUnit(fixture.plugin);
    CHECK_EQ(fixture.host.TakeCalls(), Lines{"_api__get_objectid_local 0 2", "_api__container_delete_multi_texture 7 2",
                                             "_api__container_set_multi_texture 7 0 50"});
}

// A rectangle of rows 100 .. 103 counted upwards: the top one lies in memory row 1024 - 103 - 1 = 920.
TEST_CASE("The changed rectangle alone is uploaded, rows counted from the top, and stays for the next render") {
    ModuleFixture fixture(With(1, 1));
    fixture.Field();
    fixture.PreRender();
    fixture.plugin.telestrator.dirtyRect = Rect(10, 100, 14, 103);
    const CanvasPixels pixels = fixture.plugin.telestrator.canvasSurface->GetPixels();
    for (std::size_t i = 0; i < pixels.byteSize; ++i) pixels.bytes[i] = static_cast<std::byte>(i * 7 + i / 4096);
    const Lines upload{"glPixelStorei" + Words({GL_UNPACK_ROW_LENGTH, 1024}),
                       "_api__image_subtexload" + Words({40, -1, 10, 920, 5, 4, GL_RGBA, GL_UNSIGNED_BYTE}),
                       "glPixelStorei" + Words({GL_UNPACK_ROW_LENGTH, 0})};
    for (int render = 0; render < 2; ++render) {
        fixture.host.TakeCalls();
        UploadCanvas(fixture.plugin, pixels.bytes, pixels.width, pixels.height);
        CHECK_EQ(fixture.host.TakeCalls(), upload);
    }
    for (std::size_t row = 915; row < 930; ++row) {
        for (std::size_t column = 5; column < 20; ++column) {
            const std::size_t at = (row * 1024 + column) * 4;
            const bool inside = row >= 920 && row < 924 && column >= 10 && column < 15;
            CHECK_EQ(fixture.host.texture[at] == static_cast<std::uint8_t>(pixels.bytes[at]),
                     inside || pixels.bytes[at] == std::byte{0});
        }
    }
}

TEST_CASE("After each event the texture is the canvas") {
    ModuleFixture fixture(With(1, 1));
    fixture.Field();
    fixture.PreRender();
    const auto same = [&] {
        fixture.PreRender();
        const CanvasPixels pixels = fixture.plugin.telestrator.canvasSurface->GetPixels();
        return std::memcmp(fixture.host.texture.data(), pixels.bytes, pixels.byteSize) == 0;
    };
    fixture.Press(200, 300);
    CHECK(same());
    fixture.Move(260, 340);
    CHECK(same());
    fixture.Release(300, 300);
    CHECK(same());
    PLUGIN_EXEC_ACTION(&fixture.plugin, 1);
    CHECK(same());
    PLUGIN_EXEC_ACTION(&fixture.plugin, 0);
    CHECK(same());
}

TEST_CASE("Rectangles without pixels upload nothing; those beyond the canvas are cut to it") {
    ModuleFixture fixture(With(1, 1));
    fixture.Field();
    fixture.PreRender();
    const CanvasPixels pixels = fixture.plugin.telestrator.canvasSurface->GetPixels();
    constexpr std::int32_t far = std::numeric_limits<std::int32_t>::max();
    for (const Rect& rect : {Rect(), Rect(5, 5, 4, 10), Rect(5, 5, 10, 4), Rect(5, 5, -far, 10), Rect(2000, 0, 2005, 9),
                             Rect(-20, -20, -1, -1)}) {
        fixture.plugin.telestrator.dirtyRect = rect;
        fixture.host.TakeCalls();
        UploadCanvas(fixture.plugin, pixels.bytes, pixels.width, pixels.height);
        CHECK(fixture.host.calls.empty());
    }
    fixture.plugin.telestrator.dirtyRect = Rect(-far, -far, far, far);
    UploadCanvas(fixture.plugin, pixels.bytes, pixels.width, pixels.height);
    CHECK_EQ(fixture.host.CallsOf("_api__image_subtexload"),
             Lines{"_api__image_subtexload" + Words({40, -1, 0, 0, 1024, 1024, GL_RGBA, GL_UNSIGNED_BYTE})});
}

TEST_CASE("A commit copies the shapes over the canvas, uploads all of it and pushes") {
    ModuleFixture fixture(With(1, 1));
    fixture.Field();
    fixture.PreRender();
    fixture.Press(200, 300);
    fixture.Release(200, 300);
    fixture.plugin.telestrator.shapeSurface->BeginStroke(600, 600, 1);
    fixture.plugin.telestrator.shapeCommitPending = true;
    fixture.host.TakeCalls();
    fixture.PreRender();
    CHECK_FALSE(fixture.plugin.telestrator.shapeCommitPending);
    CHECK_FALSE(fixture.plugin.telestrator.fullUploadPending);
    CHECK_EQ(fixture.host.CallsOf("_api__image_subtexload"), Lines{fullUpload});  // in place of the partial one
    CHECK_EQ(PixelsOf(*fixture.plugin.telestrator.canvasSurface), PixelsOf(*fixture.plugin.telestrator.shapeSurface));
    const CanvasPixels pixels = fixture.plugin.telestrator.canvasSurface->GetPixels();
    CHECK_EQ(std::memcmp(fixture.plugin.telestrator.currentSnapshot.get(), pixels.bytes, pixels.byteSize), 0);
}

TEST_CASE("Without a canvas nothing is set, saved or restored") {
    ModuleFixture fixture(With(0, 1));
    CHECK_EQ(fixture.PreRender(), 0);
    CHECK_EQ(fixture.PostRender(), 1);
    CHECK(fixture.host.calls.empty());
}

TEST_CASE("Post render restores what pre render found") {
    for (const std::int32_t blends : {0, 1}) {
        for (const std::int32_t alphaTests : {0, 1}) {
            ModuleFixture fixture(With(0, 1));
            fixture.Field();
            fixture.host.glState = {
                {GL_BLEND, blends}, {GL_ALPHA_TEST, alphaTests}, {GL_BLEND_SRC, 0x302}, {GL_BLEND_DST, 0x303}};
            fixture.PreRender();
            fixture.host.TakeCalls();
            CHECK_EQ(fixture.PostRender(), 1);
            Lines wanted;
            if (blends == 0) wanted.push_back("glDisable" + Words({GL_BLEND}));
            if (alphaTests != 0) wanted.push_back("glEnable" + Words({GL_ALPHA_TEST}));
            wanted.push_back("glBlendFunc" + Words({0x302, 0x303}));
            CHECK_EQ(fixture.host.TakeCalls(), wanted);
        }
    }
}

TEST_CASE("Post render leaves alone what pre render does not set") {
    for (const auto& [unit, transparent] : {std::pair{0, 0}, std::pair{1, 1}, std::pair{2, 0}}) {
        ModuleFixture fixture(With(unit, transparent));
        fixture.Field();
        fixture.PreRender();
        fixture.host.TakeCalls();
        CHECK_EQ(fixture.PostRender(), 1);
        CHECK(fixture.host.calls.empty());
    }
}

TEST_CASE("Settings changed between pre and post render are survived") {
    ModuleFixture fixture(With(0, 1));
    fixture.Field();
    fixture.PreRender();
    fixture.plugin.TexUnit = 2;
    CHECK_EQ(fixture.PostRender(), 1);
    fixture.PreRender();
    fixture.plugin.TexUnit = 0;
    fixture.plugin.Transparent = 0;
    CHECK_EQ(fixture.PostRender(), 1);
    fixture.plugin.Transparent = 1;
    CHECK_EQ(fixture.PostRender(), 1);
}

TEST_CASE("Texture units at the ends of the range are survived") {
    for (const std::int32_t unit :
         {std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min(), -1}) {
        ModuleFixture fixture(With(unit, 1));
        fixture.Fields(2);
        CHECK_EQ(fixture.PreRender(), 1);
        CHECK_EQ(fixture.PostRender(), 1);
    }
}

}  // namespace
}  // namespace chalkpane::testing
