#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>

#include "kel/scene/overlay_picture.h"
#include "tests/kel/outputs/src_over.h"
#include "tests/kel/pixels.h"
#include "tests/kel/telestrator.h"

namespace kel {
namespace {

using testing::Pixel;
using testing::Scribble;
using testing::side;
using testing::Telestrator;

void CheckLaysOver(Telestrator& telestrator) {
    const picture_io::Picture without = telestrator.host.ReadFrame();
    Scribble(telestrator);
    const picture_io::Picture with = telestrator.host.ReadFrame();
    REQUIRE_FALSE(with == without);
    for (const AlphaForm form : {AlphaForm::Premultiplied, AlphaForm::Straight})
        CHECK_LE(testing::WorstDifference(testing::LaidOver(telestrator.host.ReadOverlay(form), without, form), with),
                 2);
    CHECK(telestrator.host.ReadFrame() == with);
    CHECK(telestrator.host.WrongUses().empty());
}

}  // namespace

TEST_CASE("The overlay laid over the picture gives the rendered picture, on every unit") {
    const picture_io::Picture base = testing::Speckled(side, side);
    for (const std::int32_t unit : {1, 2}) {
        Telestrator telestrator(unit, &base);
        CheckLaysOver(telestrator);
    }
    const picture_io::Picture hidden = testing::Plain(1, 1, testing::green);
    Telestrator transparent(0, &hidden, &base);
    CheckLaysOver(transparent);
}

TEST_CASE("The overlay laid over the plain container gives the rendered picture") {
    Telestrator telestrator(0);
    telestrator.Set("Transparent", 0);
    CheckLaysOver(telestrator);
}

// Half of a green picture shows, and behind it stands another; the stroke makes the container itself more opaque.
TEST_CASE("The overlay laid over the picture gives the rendered picture where the container is half clear") {
    const picture_io::Picture behind = testing::Speckled(side, side);
    const picture_io::Picture halfClear = testing::Plain(1, 1, {0, 255, 0, 128});
    for (const std::int32_t unit : {0, 1}) {
        Telestrator telestrator(unit, &halfClear, &behind);
        telestrator.Set("Transparent", 0);
        CheckLaysOver(telestrator);
    }
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
