#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "kel/scene/overlay_picture.h"
#include "kel/session/player.h"
#include "tests/kel/outputs/src_over.h"
#include "tests/kel/pixels.h"
#include "tests/kel/telestrator.h"

namespace kel {
namespace {

using testing::Pixel;
using testing::Scribble;
using testing::side;
using testing::Telestrator;

void CheckComposites(Telestrator& telestrator) {
    const picture_io::Picture without = telestrator.host.ReadFrame();
    Scribble(telestrator);
    const picture_io::Picture with = telestrator.host.ReadFrame();
    REQUIRE_FALSE(with == without);
    const picture_io::Picture premultiplied = telestrator.host.ReadPremultipliedOverlay();
    CHECK_LE(testing::WorstDifference(testing::Composited(premultiplied, without, false), with), 2);
    CHECK_LE(testing::WorstDifference(testing::Composited(telestrator.host.ReadOverlay(), without, true), with), 2);
    CHECK(telestrator.host.ReadFrame() == with);
    CHECK(telestrator.host.WrongUses().empty());
}

}  // namespace

TEST_CASE("The overlay composited over the picture gives the rendered picture, on every unit") {
    const picture_io::Picture base = testing::Speckled(side, side);
    for (const std::int32_t unit : {1, 2}) {
        Telestrator telestrator(unit, &base);
        CheckComposites(telestrator);
    }
    const picture_io::Picture hidden = testing::Plain(1, 1, testing::green);
    Telestrator transparent(0, &hidden, &base);
    CheckComposites(transparent);
}

TEST_CASE("The overlay composited over the plain container gives the rendered picture") {
    Telestrator telestrator(0);
    telestrator.Set("Transparent", 0);
    CheckComposites(telestrator);
}

// Half of a green picture shows, and behind it stands another; the stroke makes the container itself more opaque.
TEST_CASE("The overlay composited over the picture gives the rendered picture where the container is half clear") {
    const picture_io::Picture behind = testing::Speckled(side, side);
    const picture_io::Picture halfClear = testing::Plain(1, 1, {0, 255, 0, 128});
    for (const std::int32_t unit : {0, 1}) {
        Telestrator telestrator(unit, &halfClear, &behind);
        telestrator.Set("Transparent", 0);
        CheckComposites(telestrator);
    }
}

namespace {

// The overlay of every `step`th field and of the last. With Redraw::Whole only those fields are drawn, all of them.
std::vector<picture_io::Picture> OverlaysOf(const Session& session, Redraw redraw, std::int64_t step) {
    Host host({session.window.width, session.window.height});
    host.SetRedraw(redraw);
    Player player(session, host, CHALKPANE_MODULE);
    std::vector<picture_io::Picture> overlays;
    while (!player.IsOver()) {
        const bool isLooked = player.NextField() % step == 0 || player.NextField() + 1 == session.fields;
        const bool isDrawn = isLooked || redraw == Redraw::Changed;
        (void)player.PlayField(isDrawn ? Player::Rendering::Wanted : Player::Rendering::NotWanted);
        if (isLooked) overlays.push_back(host.ReadOverlay());
    }
    return overlays;
}

}  // namespace

TEST_CASE("An overlay that is renewed in part is the same as one that is made anew") {
    for (const char* name : {"test-card", "telestration", "undo"}) {
        CAPTURE(name);
        const Session session = ReadSession(std::string(KEL_SOURCE_FOLDER "/examples/") + name + ".json");
        const std::int64_t step = session.fields > 100 ? 60 : 1;
        const auto renewed = OverlaysOf(session, Redraw::Changed, step);
        const auto whole = OverlaysOf(session, Redraw::Whole, step);
        REQUIRE_EQ(renewed.size(), whole.size());
        for (std::size_t i = 0; i < whole.size(); ++i) {
            CAPTURE(i);
            CHECK(renewed[i] == whole[i]);
        }
    }
}

TEST_CASE("An overlay follows what is drawn in fields that nobody looks at") {
    Telestrator looked(0);
    Telestrator unlooked(0);
    unlooked.host.SetDrawing(false);
    for (Telestrator* telestrator : {&looked, &unlooked}) telestrator->Draw({{100, 100}, {500, 140}, {900, 400}});
    CHECK(looked.host.ReadOverlay() == looked.host.ReadOverlay());
    unlooked.host.SetDrawing(true);
    unlooked.host.RunField();
    looked.host.RunField();
    CHECK(looked.host.ReadOverlay() == unlooked.host.ReadOverlay());
    unlooked.host.ResizeWindow({320, 200});
    unlooked.host.RunField();
    CHECK_EQ(unlooked.host.ReadOverlay().width, 320);
}

namespace {

picture_io::Picture One(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    return testing::Plain(1, 1, {red, green, blue, 255});
}

Pixel OverlayPixel(const OverlaySources& sources) { return OverlayOf(sources).At(0, 0); }

}  // namespace

// Colour (100, 50, 0) with alpha 100 over (200, 200, 200): 200 * 155 / 255 = 121.6, plus the colour.
TEST_CASE("Black and white tell colour and alpha of an overlay") {
    CHECK_EQ(OverlayPixel({One(222, 172, 122), One(200, 200, 200), One(100, 50, 0), One(255, 205, 155)}),
             Pixel{100, 50, 0, 100});
    CHECK_EQ(OverlayPixel({One(9, 8, 7), One(9, 8, 7), One(0, 0, 0), One(255, 255, 255)}), Pixel{0, 0, 0, 0});
    CHECK_EQ(OverlayPixel({One(9, 8, 7), One(1, 2, 3), One(9, 8, 7), One(9, 8, 7)}), Pixel{9, 8, 7, 255});
}

// White, one level above what black and alpha make, must not have a colour above its alpha: 250 - 150 is 100, so the
// three channels say 155, 155 and 155, and a colour of 156 asks for one more.
TEST_CASE("No colour of an overlay is above its alpha") {
    CHECK_EQ(OverlayPixel({One(156, 0, 0), One(0, 0, 0), One(156, 0, 0), One(255, 100, 100)}), Pixel{156, 0, 0, 156});
}

// Black and white say that nothing was drawn, yet 100 became 50 and 200 stayed: half as much of the first channel is
// the least alpha that does it, 127.5, so 128. What then is missing is 50 - 100 * 127 / 255 = 0.2 and
// 200 - 200 * 127 / 255 = 100.4.
TEST_CASE("Where black and white do not tell all, the overlay is made for the picture") {
    CHECK_EQ(OverlayPixel({One(50, 200, 200), One(100, 200, 200), One(0, 0, 0), One(255, 255, 255)}),
             Pixel{0, 100, 100, 128});
    // Lighter: 100 became 177, which is 77 of the 155 there were: 126.7, so 127. 177 - 100 * 128 / 255 = 126.8.
    CHECK_EQ(OverlayPixel({One(177, 0, 0), One(100, 0, 0), One(0, 0, 0), One(255, 255, 255)}), Pixel{127, 0, 0, 127});
}

}  // namespace kel
