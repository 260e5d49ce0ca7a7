#include "kel/scene/drawing_plan.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "kel/scene/inked_area.h"
#include "module/abi/host_api.h"
#include "tests/kel/pixels.h"
#include "tests/kel/probe.h"

namespace kel {
namespace {

using picture_io::Picture;

constexpr double fieldOfView = 40;

// As the window has it: pictures seen pixel by pixel behind a pane that stands a little nearer.
struct Show {
    explicit Show(WindowSize size) : host(size), distance(DistanceFor(size)) {
        Camera camera;
        camera.position = {0, 0, distance};
        camera.target = {0, 0, 0};
        camera.fieldOfView = fieldOfView;
        host.SetCamera(camera);
        Placement placement;
        placement.size = {1.0 * size.width, 1.0 * size.height};
        backdrop = host.AddContainer(placement);
    }
    ObjectId AddPane(const Module& module, const std::vector<ParameterSetting>& values) {
        constexpr double nearness = 0.001;
        const double side = std::max(host.Window().width, host.Window().height);
        Placement placement;
        placement.size = {side, side};
        placement.position = {0, 0, distance * nearness};
        placement.scale = {1 - nearness, 1 - nearness, 1};
        const ObjectId pane = host.AddContainer(placement);
        host.Attach(pane, module, values);
        return pane;
    }
    static double DistanceFor(WindowSize size) {
        return size.height / 2.0 / std::tan(fieldOfView / 2 / 180 * std::numbers::pi);
    }
    DrawingPlan Plan() { return PlanDrawing(host.State(), CurrentCamera()); }
    Matrix CurrentCamera() {
        Camera camera;
        camera.position = {0, 0, distance};
        camera.fieldOfView = fieldOfView;
        return CameraMatrix(camera, 1.0 * host.Window().width / host.Window().height);
    }

    Host host;
    double distance;
    ObjectId backdrop = noObject;
};

// Pictures that follow each other behind a pane on which a stroke is being drawn, and is taken away in the end: the
// frames, and after each of them the strokes alone.
std::vector<Picture> Frames(WindowSize size, Redraw redraw) {
    Show show(size);
    show.host.SetRedraw(redraw);
    show.host.SetPicture(show.backdrop, testing::Plain(size.width, size.height, testing::blue));
    const ObjectId pane = show.AddPane(show.host.LoadModule(CHALKPANE_MODULE), {{"Transparent", true}});
    std::vector<Picture> frames;
    Picture next = testing::Speckled(size.width, size.height);
    const auto run = [&] {
        std::rotate(next.rgba.begin(), next.rgba.begin() + 4, next.rgba.end());
        if (frames.size() % 4 == 0) show.host.SetPicture(show.backdrop, next);
        Picture upwards = picture_io::Flipped(next);
        if (frames.size() % 8 < 4) show.host.ExchangePicture(show.backdrop, upwards, true);
        show.host.RunField();
        frames.push_back(show.host.ReadFrame());
        frames.push_back(show.host.ReadPremultipliedOverlay());
    };
    run();
    show.host.QueuePointer(PointerKind::Press, size.width / 4, size.height / 3);
    run();
    for (std::int32_t i = 0; i < 4; ++i) {
        show.host.QueuePointer(PointerKind::Move, size.width / 4 + 9 * i, size.height / 3 + 5 * i);
        run();
    }
    show.host.QueuePointer(PointerKind::Release, size.width / 3, size.height / 3);
    run();
    for (int i = 0; i < 4; ++i) run();  // with all strokes as they are
    show.host.PushButton(pane, "Clear");
    run();
    run();
    return frames;
}

}  // namespace

TEST_CASE("Copied pictures behind a pane whose clear part is left out look as if all were drawn, byte for byte") {
    for (const WindowSize size : {WindowSize{320, 180}, {213, 119}, {90, 160}, {641, 363}}) {
        CAPTURE(size.width);
        const auto changed = Frames(size, Redraw::Changed);
        const auto whole = Frames(size, Redraw::Whole);
        REQUIRE_EQ(changed.size(), whole.size());
        for (std::size_t i = 0; i < changed.size(); ++i) {
            CAPTURE(i);
            CHECK_EQ(changed[i] == whole[i], true);
        }
    }
}

TEST_CASE("An opaque picture that is seen pixel by pixel is copied, and depth is of no use before one pane") {
    Show show({64, 36});
    show.host.SetPicture(show.backdrop, testing::Speckled(64, 36));
    CHECK(show.Plan() == DrawingPlan{show.backdrop, {0, 0, 64, 36}, false});
    Placement pane;
    pane.size = {64, 64};
    pane.position = {0, 0, 1};
    (void)show.host.AddContainer(pane);
    CHECK_FALSE(show.Plan().hasDepth);
    (void)show.host.AddContainer(pane);
    CHECK(show.Plan() == DrawingPlan{show.backdrop, {0, 0, 64, 36}, true});
}

TEST_CASE("What is not opaque, not of its own size, or not surely behind all else is drawn") {
    const auto isDrawn = [](const Picture& picture, const Placement& other) {
        Show show({64, 36});
        show.host.SetPicture(show.backdrop, picture);
        (void)show.host.AddContainer(other);
        return !show.Plan().LeavesOut();
    };
    Placement before;
    before.size = {10, 10};
    before.position = {0, 0, 1};
    CHECK_FALSE(isDrawn(testing::Speckled(64, 36), before));
    CHECK(isDrawn(testing::Speckled(32, 18), before));
    Picture clearPixel = testing::Speckled(64, 36);
    clearPixel.Set(5, 5, {0, 0, 0, 254});
    CHECK(isDrawn(clearPixel, before));
    for (const double depth : {0.0, -1.0}) {
        Placement behind = before;
        behind.position = {0, 0, depth};
        CHECK(isDrawn(testing::Speckled(64, 36), behind));
    }
    Placement crossing = before;
    crossing.position = {0, 0, 3};
    crossing.rotation = {0, 60, 0};  // from 3 - 4.3 to 3 + 4.3
    CHECK(isDrawn(testing::Speckled(64, 36), crossing));
}

TEST_CASE("A module that moves its pane behind the picture while that is drawn hides it there") {
    testing::ProbedHost other;  // has the module registered
    for (const Redraw redraw : {Redraw::Changed, Redraw::Whole}) {
        Show show({64, 36});
        show.host.SetRedraw(redraw);
        const Picture picture = testing::Speckled(64, 36);
        show.host.SetPicture(show.backdrop, picture);
        (void)show.AddPane(show.host.LoadModule(PROBE_MODULE), {});
        show.host.RunField();
        CHECK_FALSE(show.host.ReadFrame() == picture);  // the pane is white
        other.hooks.preRender = [] {
            kelGL_glMatrixMode(0x1700);
            kelGL_glTranslatef(0, 0, -5);
        };
        show.host.SetPicture(show.backdrop, picture);
        show.host.RunField();
        CHECK(show.host.ReadFrame() == picture);
        other.hooks.preRender = nullptr;
    }
}

TEST_CASE("The box around ink holds all pixels that are not clear black, and no more") {
    ImageObject image;
    image.width = 7;
    image.height = 5;
    CHECK(BoxAroundInk(image) == FrameArea{0, 0, 7, 5});  // nobody knows
    image.shown.assign(std::size_t{7} * 5 * 4, 0);
    CHECK(BoxAroundInk(image).IsEmpty());
    const auto ink = [&](std::size_t x, std::size_t y, std::size_t channel) {
        image.shown[(y * 7 + x) * 4 + channel] = 1;
    };
    ink(2, 1, 3);
    CHECK(BoxAroundInk(image) == FrameArea{2, 1, 1, 1});
    ink(5, 3, 0);
    CHECK(BoxAroundInk(image) == FrameArea{2, 1, 4, 3});
    ink(0, 4, 1);
    ink(6, 0, 2);
    CHECK(BoxAroundInk(image) == FrameArea{0, 0, 7, 5});
}

}  // namespace kel
