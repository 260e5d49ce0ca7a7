#include <doctest/doctest.h>

#include <string>
#include <vector>

#include "tests/module/module_fixture.h"

namespace chalkpane::testing {
namespace {

using Lines = std::vector<std::string>;

TEST_CASE("Registration names the plug-in, 20 parameters and two buttons in a fixed order") {
    RecordingHost host;
    CHECK_EQ(PLUGIN_INIT_EX(), 0);
    const Lines wanted{
        "qoRegisterPlugin Chalkpane",
        "qoRegisterPluginType 2",
        "qoRegisterPluginFolder Texture",
        "qoRegisterParameterBool Active Active 1",
        "qoRegisterParameterInt TexUnit Texture 1 0 2",
        "qoRegisterParameterBool Transparent Transparent Base 1",
        "qoRegisterParameterFloat Alpha Alpha 100 0 100",
        "qoHideParameter Alpha",
        "qoRegisterParameterRadio BrushType Brush Type 0 'Color''Erase'",
        "qoRegisterParameterImage BrushImage Brush Image ''",
        "qoRegisterParameterInt BrushWidth Brush Width 5 1 30",
        "qoRegisterParameterInt EraserWidth Eraser Brush Width 10 1 60",
        "qoRegisterParameterColor BrushColor Brush Color 4026531840",  // 0xF0000000
        "qoRegisterParameterBool RecoShapes Recognize Shapes 0",
        "qoRegisterParameterBool RecoEllipse Recognize Ellipse 1",
        "qoRegisterParameterBool RecoCircle Recognize Circle 0",
        "qoRegisterParameterBool RecoCross Recognize Cross 1",
        "qoRegisterParameterInt ShapeDelay Shape Delay 50 1 100",
        "qoRegisterParameterBool Arrow Draw Arrow 1",
        "qoRegisterParameterInt ArrowLength Arrow Length 30 1 100",
        "qoRegisterParameterInt ArrowWidth Arrow Width 20 1 100",
        "qoRegisterParameterInt CircleRadius Circle Rad 0 0 1000",
        "qoRegisterParameterInt CrossDia Cross Width 0 0 1000",
        "qoRegisterParameterInt MaxUndos Max. Undos 10 0 10",
        "qoRegisterPushButton Clear Clear 0",
        "qoRegisterPushButton Undo Undo 1",
        "qoRegisterTotalSize 1392",
    };
    CHECK_EQ(host.TakeCalls(), wanted);
}

TEST_CASE("Colour mode shows the brush's parameters and hides the eraser's") {
    ModuleFixture fixture;
    fixture.plugin.TexUnit = 0;
    fixture.host.TakeCalls();
    CHECK_EQ(PLUGIN_GUI_STATUS(&fixture.plugin), fixture.host.showAnswer);
    CHECK_EQ(fixture.host.TakeCalls(),
             Lines{"qoSendGuiParameterShow BrushImage 1", "qoSendGuiParameterShow BrushWidth 1",
                   "qoSendGuiParameterShow EraserWidth 0", "qoSendGuiParameterShow Transparent 1"});
}

TEST_CASE("Erase mode hides the brush's parameters; a multi-texture unit hides the transparent base") {
    ModuleFixture fixture;
    fixture.plugin.BrushType = 1;
    fixture.plugin.TexUnit = 2;
    fixture.plugin.RecoShapes = 1;  // never hides or shows anything
    fixture.host.TakeCalls();
    PLUGIN_GUI_STATUS(&fixture.plugin);
    CHECK_EQ(fixture.host.TakeCalls(),
             Lines{"qoSendGuiParameterShow BrushImage 0", "qoSendGuiParameterShow BrushWidth 0",
                   "qoSendGuiParameterShow EraserWidth 1", "qoSendGuiParameterShow Transparent 0"});
}

}  // namespace
}  // namespace chalkpane::testing
