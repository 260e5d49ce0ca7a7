#include <doctest/doctest.h>

#include <array>
#include <utility>
#include <vector>

#include "module/abi/host_api.h"
#include "tests/kel/gl_formats.h"
#include "tests/kel/pixels.h"
#include "tests/kel/probe.h"
#include "tests/kel/telestrator.h"

// What is drawn anew, and that the picture is the same as if all of it were.

namespace kel {
namespace {

using testing::rgba;
using testing::unsignedByte;

bool Contains(const FrameArea& outer, const FrameArea& inner) {
    return inner.x >= outer.x && inner.y >= outer.y && inner.x + inner.width <= outer.x + outer.width &&
           inner.y + inner.height <= outer.y + outer.height;
}

// A host in a square window of 64 pixels that shows an image of 4 x 4 in all of it.
class ShownImage : public testing::ProbedHost {
public:
    ShownImage() {
        InField([this] {
            image = _api__create_image(-1, 4, 4, rgba);
            std::int32_t texture = noObject;
            _api__texture_create_texture(&texture, image);
            _api__set_texture_qual_type(texture, 0);
            _api__container_set_multi_texture(container, 0, texture);
            _api__scene_redraw();
        });
        (void)host->TakeChangedArea();
    }
    // Into the texel (x, y), counted from the lower left.
    void Upload(std::int32_t x, std::int32_t y, const testing::Pixel& colour) {
        InRender([&] { _api__image_subtexload(image, -1, x, y, 1, 1, rgba, unsignedByte, colour.data()); });
    }

    std::int32_t image = noObject;
};

// The same strokes on two containers that lean, once drawn in parts and once as a whole.
picture_io::Picture LeaningPicture(Redraw redraw, std::int32_t textureUnit, std::vector<FrameArea>& areas) {
    Host host({160, 120});
    host.SetRedraw(redraw);
    Camera camera = testing::CameraInFront();
    camera.position[0] += 60;
    host.SetCamera(camera);
    Placement back;
    back.size = {150, 150};
    back.position = {0, 0, -20};
    host.SetPicture(host.AddContainer(back), testing::Plain(7, 5, {10, 200, 90, 255}));
    Placement leaning;
    leaning.rotation = {20, -35, 10};
    leaning.scale = {1.1, 0.9, 1};
    const ObjectId container = host.AddContainer(leaning);
    host.SetPicture(container, testing::Plain(3, 9, {240, 230, 220, 120}));
    host.Attach(container, host.LoadModule(CHALKPANE_MODULE), {{"TexUnit", textureUnit}, {"BrushWidth", 20}});
    host.RunField();
    (void)host.TakeChangedArea();
    host.QueuePointer(PointerKind::Press, 60, 50);
    for (std::int32_t i = 0; i < 12; ++i) {
        host.QueuePointer(PointerKind::Move, 60 + 3 * i, 50 + i);
        host.RunField();
        areas.push_back(host.TakeChangedArea());
    }
    host.QueuePointer(PointerKind::Release, 96, 62);
    for (int i = 0; i < 3; ++i) host.RunField();
    return host.ReadFrame();
}

}  // namespace

TEST_CASE("A field in which nothing changes draws nothing, though the module asks for it") {
    testing::Telestrator telestrator(1);
    telestrator.Draw({{100, 100}, {300, 200}});
    telestrator.host.RunField();
    const std::uint64_t changes = telestrator.host.PictureNumber();
    (void)telestrator.host.TakeChangedArea();
    const picture_io::Picture before = telestrator.host.ReadFrame();
    for (int field = 0; field < 5; ++field) telestrator.host.RunField();
    CHECK_EQ(telestrator.host.PictureNumber(), changes);
    CHECK(telestrator.host.TakeChangedArea().IsEmpty());
    CHECK(telestrator.host.ReadFrame() == before);
}

TEST_CASE("Only what an upload changes is drawn, with a margin") {
    ShownImage shown;
    shown.Upload(1, 2, testing::red);
    // A texel is 16 x 16 pixels; two texels and two pixels of margin to each side, as far as the window goes.
    const FrameArea area = shown.host->TakeChangedArea();
    CHECK(Contains(area, {16, 32, 16, 16}));
    CHECK_EQ(area == FrameArea{0, 0, 64, 64}, true);  // more than half of this small window
    CHECK_EQ(shown.host->ReadFrame().At(24, 63 - 40), testing::red);
    const std::uint64_t changes = shown.host->PictureNumber();
    shown.Upload(1, 2, testing::red);
    CHECK_EQ(shown.host->PictureNumber(), changes);  // the texture holds that already
    shown.Upload(0, 0, testing::green);
    CHECK_EQ(shown.host->PictureNumber(), changes + 1);
    // Texels 0 and the margin of 2: pixels 0 .. 48, and 2 more.
    CHECK_EQ(shown.host->TakeChangedArea() == FrameArea{0, 0, 64, 64}, true);
    CHECK_EQ(shown.host->ReadFrame().At(8, 63 - 8), testing::green);
    CHECK_EQ(shown.host->ReadFrame().At(24, 63 - 40), testing::red);
}

TEST_CASE("A part is drawn as the module has asked, and the rest of the picture stays") {
    testing::Telestrator telestrator(1);
    telestrator.Draw({{100, 100}, {200, 100}});
    telestrator.host.RunField();
    (void)telestrator.host.TakeChangedArea();
    telestrator.Draw({{700, 800}, {720, 800}});
    const FrameArea area = telestrator.host.TakeChangedArea();
    // 30 pixels of pen around (700 .. 720, 800), y counted from the bottom; canvas pixels are window pixels here.
    CHECK(Contains(area, {690, 1023 - 810, 40, 20}));
    CHECK(Contains({600, 1023 - 900, 220, 200}, area));
    telestrator.CheckSeen(150, 100, testing::red);
    telestrator.CheckSeen(710, 800, testing::red);
}

TEST_CASE("Whatever a module asks of OpenGL otherwise than before is drawn, and drawn again when it is over") {
    testing::ProbedHost probed(8);
    probed.InField([] { _api__scene_redraw(); });
    const std::uint64_t changes = probed.host->PictureNumber();
    probed.InField([] { _api__scene_redraw(); });
    CHECK_EQ(probed.host->PictureNumber(), changes);
    probed.InRender([] {
        kelGL_glMatrixMode(0x1700);
        kelGL_glTranslatef(1000, 0, 0);
    });
    CHECK_EQ(probed.host->PictureNumber(), changes + 1);
    CHECK_EQ(probed.host->ReadFrame().At(4, 4), testing::black);
    probed.InField([] { _api__scene_redraw(); });
    CHECK_EQ(probed.host->PictureNumber(), changes + 2);
    CHECK_EQ(probed.host->ReadFrame().At(4, 4), testing::white);
}

TEST_CASE("Uploads of fields that are not drawn are seen in the next one that is") {
    ShownImage shown;
    shown.host->SetDrawing(false);
    shown.Upload(3, 3, testing::blue);
    CHECK(shown.host->TakeChangedArea().IsEmpty());
    shown.host->SetDrawing(true);
    shown.host->RunField();
    CHECK_FALSE(shown.host->TakeChangedArea().IsEmpty());
    CHECK_EQ(shown.host->ReadFrame().At(56, 7), testing::blue);
}

TEST_CASE("Parts of containers that lean look as the whole does, byte for byte") {
    for (const std::int32_t textureUnit : {0, 1, 2}) {
        std::vector<FrameArea> parts;
        std::vector<FrameArea> wholes;
        CHECK(LeaningPicture(Redraw::Changed, textureUnit, parts) ==
              LeaningPicture(Redraw::Whole, textureUnit, wholes));
        int small = 0;
        for (const FrameArea& part : parts)
            if (!part.IsEmpty() && part.width * part.height < 160 * 120 / 2) ++small;
        CHECK_GT(small, 6);
        for (const FrameArea& whole : wholes) CHECK_EQ(whole == FrameArea{0, 0, 160, 120}, true);
    }
}

}  // namespace kel
