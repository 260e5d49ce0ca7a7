#include "telestrator/journal/ink_fade.h"

#include <doctest/doctest.h>

#include "tests/telestrator/journal/random_session.h"

namespace chalkpane {
namespace {

using testing::CanvasOf;
using testing::PassField;
using testing::Pixels;

void DrawLine(JournaledTelestrator& telestrator, double y) {
    telestrator.Press({}, {100, y});
    telestrator.Release({}, {400, y});
}

Pixels FadedCanvas(JournaledTelestrator& telestrator) {
    Pixels faded(CanvasOf(telestrator).size());
    WriteFaded(telestrator.Inner().canvasSurface->GetPixels(), telestrator.FadeFactor(), faded);
    return faded;
}

// Waits 3 fields and fades over 4: factors 1 for 3 fields, then 3/4, 1/2, 1/4, and in the seventh field it is gone.
constexpr FadeSettings quick{3, 4};

TEST_CASE("ink waits, fades in equal steps and is gone, and undoing brings it back") {
    JournaledTelestrator telestrator;
    telestrator.fade = quick;
    telestrator.Field({});
    DrawLine(telestrator, 100);
    const Pixels drawn = CanvasOf(telestrator);
    for (const double factor : {1.0, 1.0, 1.0, 0.75, 0.5, 0.25}) {
        PassField(telestrator, {});
        CHECK_EQ(telestrator.FadeFactor(), factor);
        CHECK(CanvasOf(telestrator) == drawn);
    }
    PassField(telestrator, {});
    CHECK_EQ(telestrator.FadeFactor(), 1.0);
    CHECK(testing::IsBlank(*telestrator.Inner().canvasSurface));
    CHECK(telestrator.Undo());
    CHECK(CanvasOf(telestrator) == drawn);
    CHECK_EQ(telestrator.FadeFactor(), 1.0);
}

TEST_CASE("what is drawn during the wait keeps all ink, and both lines fade by one factor") {
    JournaledTelestrator telestrator;
    telestrator.fade = quick;
    telestrator.Field({});
    DrawLine(telestrator, 100);
    for (int i = 0; i < 4; ++i) PassField(telestrator, {});
    CHECK_EQ(telestrator.FadeFactor(), 0.75);
    telestrator.Press({}, {100, 300});
    PassField(telestrator, {});
    CHECK_EQ(telestrator.FadeFactor(), 1.0);
    for (int i = 0; i < 20; ++i) PassField(telestrator, {});  // a hand that rests has not stopped drawing
    CHECK_EQ(telestrator.FadeFactor(), 1.0);
    telestrator.Release({}, {400, 300});
    for (int i = 0; i < 5; ++i) PassField(telestrator, {});
    const Pixels canvas = CanvasOf(telestrator);
    const Pixels faded = FadedCanvas(telestrator);
    // Half of 255 is 127.5, which rounds to 128; the same for every other byte.
    bool isHalf = true;
    for (std::size_t i = 0; i < canvas.size(); ++i)
        isHalf = isHalf && static_cast<int>(faded[i]) == (static_cast<int>(canvas[i]) + 1) / 2;
    CHECK(isHalf);
    CHECK_EQ(telestrator.Drawing()->Strokes().size(), 2);
}

TEST_CASE("a canvas without ink has nothing to fade, and without the setting nothing fades") {
    JournaledTelestrator telestrator;
    telestrator.fade = quick;
    telestrator.Field({});
    for (int i = 0; i < 10; ++i) PassField(telestrator, {});
    CHECK_EQ(telestrator.FadeFactor(), 1.0);
    CHECK_FALSE(telestrator.Undo());
    telestrator.fade.waitFields = -1;
    DrawLine(telestrator, 100);
    for (int i = 0; i < 10; ++i) PassField(telestrator, {});
    CHECK_EQ(telestrator.Drawing()->Strokes().size(), 1);
}

TEST_CASE("a change of the factor is a change of the whole canvas") {
    JournaledTelestrator telestrator;
    telestrator.fade = quick;
    telestrator.Field({});
    (void)telestrator.TakeChange();
    DrawLine(telestrator, 100);
    for (int i = 0; i < 3; ++i) PassField(telestrator, {});
    CHECK(telestrator.TakeChange().rect != Rect(0, 0, 1023, 1023));
    PassField(telestrator, {});
    CHECK_EQ(telestrator.TakeChange().rect, Rect(0, 0, 1023, 1023));
}

TEST_CASE("settings of any size are survived") {
    InkFade fade;
    CHECK(fade.PassField({0, -5}));
    const FadeSettings longest{2147483647, 2147483647};
    CHECK_FALSE(fade.PassField(longest));
    CHECK_EQ(fade.Factor(longest), 1.0);
}

}  // namespace
}  // namespace chalkpane
