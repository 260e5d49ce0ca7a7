#include <doctest/doctest.h>

#include "module/abi/host_api.h"
#include "tests/kel/gl_formats.h"
#include "tests/kel/pixels.h"
#include "tests/kel/probe.h"

namespace kel {
namespace {

using testing::rgba;
using testing::unsignedByte;

using testing::Pixel;

constexpr std::uint32_t textureEnvironment = 0x2300;
constexpr std::uint32_t environmentMode = 0x2200;
constexpr std::int32_t replaceMode = 0x1E01;

// A host without modules: 100 x 100 of the plane z = 0 fill the window.
struct Stage {
    explicit Stage(std::int32_t side) : host({side, side}) { host.SetCamera(testing::CameraInFront()); }

    ObjectId Add(const picture_io::Picture& picture, const Placement& placement = {}) {
        const ObjectId id = host.AddContainer(placement);
        host.SetPicture(id, picture);
        return id;
    }
    picture_io::Picture Frame() {
        host.RunField();
        return host.ReadFrame();
    }
    Host host;
};

Placement Placed(std::array<double, 2> size, const Point3& position) {
    Placement placement;
    placement.size = size;
    placement.position = position;
    return placement;
}

}  // namespace

TEST_CASE("An empty scene is black and opaque, rendered or not") {
    Stage stage(4);
    CHECK(stage.host.ReadFrame() == testing::Plain(4, 4, testing::black));
    CHECK(stage.Frame() == testing::Plain(4, 4, testing::black));
}

TEST_CASE("A container without a picture is plain white") {
    Stage stage(4);
    stage.host.AddContainer({});
    CHECK(stage.Frame() == testing::Plain(4, 4, testing::white));
}

// Each pixel of the picture falls on the middle of a pixel of the window.
TEST_CASE("A picture seen straight on is the picture, upright and the right way round") {
    Stage stage(16);
    const picture_io::Picture picture = testing::Speckled(16, 16);
    stage.Add(picture);
    const picture_io::Picture frame = stage.Frame();
    int worst = 0;
    for (std::int32_t y = 0; y < 16; ++y)
        for (std::int32_t x = 0; x < 16; ++x)
            worst = std::max(worst, testing::Difference(frame.At(x, y), picture.At(x, y)));
    CHECK_LE(worst, 1);  // rounding of the texture coordinates between two pixels
}

TEST_CASE("A picture fills its container, whatever the container's size") {
    Stage stage(20);
    stage.Add(testing::Plain(3, 7, testing::red), Placed({50, 20}, {-25, 0, 0}));
    const picture_io::Picture frame = stage.Frame();
    CHECK(frame.At(0, 8) == testing::red);
    CHECK(frame.At(9, 11) == testing::red);
    CHECK(frame.At(10, 10) == testing::black);
    CHECK(frame.At(5, 7) == testing::black);
    CHECK(frame.At(5, 12) == testing::black);
}

TEST_CASE("The nearer container hides the farther one, whichever is drawn first") {
    Stage stage(8);
    stage.Add(testing::Plain(1, 1, testing::red), Placed({20, 20}, {0, 0, 5}));
    stage.Add(testing::Plain(1, 1, testing::green));
    const picture_io::Picture frame = stage.Frame();
    CHECK(frame.At(4, 4) == testing::red);
    CHECK(frame.At(0, 0) == testing::green);
}

TEST_CASE("At the same place the container drawn last is seen") {
    Stage stage(8);
    stage.Add(testing::Plain(1, 1, testing::red));
    stage.Add(testing::Plain(1, 1, testing::green));
    CHECK(stage.Frame().At(4, 4) == testing::green);
}

// 200 * 128 / 255 + 100 * 127 / 255 = 100.4 + 49.8 = 150.2
TEST_CASE("A picture with alpha lets the one behind it shine through") {
    Stage stage(4);
    stage.Add(testing::Plain(1, 1, {100, 100, 100, 255}));
    stage.Add(testing::Plain(1, 1, {200, 200, 200, 128}));
    CHECK_LE(testing::Difference(stage.Frame().At(2, 2), Pixel{150, 150, 150, 255}), 1);
}

TEST_CASE("What is wholly clear hides nothing that is drawn later behind it") {
    Stage stage(4);
    stage.Add(testing::Plain(1, 1, {0, 0, 0, 0}), Placed({100, 100}, {0, 0, 5}));
    stage.Add(testing::Plain(1, 1, testing::green));
    CHECK(stage.Frame().At(2, 2) == testing::green);
}

TEST_CASE("A new picture replaces the former one at the next field") {
    Stage stage(4);
    const ObjectId id = stage.Add(testing::Plain(1, 1, testing::red));
    CHECK(stage.Frame().At(2, 2) == testing::red);
    stage.host.SetPicture(id, testing::Plain(2, 2, testing::blue));
    CHECK(stage.Frame().At(2, 2) == testing::blue);
}

TEST_CASE("Containers without an extent, of any rotation and scale, are drawn without harm") {
    Stage stage(8);
    for (const std::array<double, 2> size : {std::array{0.0, 5.0}, std::array{1e9, 1e9}, std::array{1e-9, 1e-9}}) {
        Placement placement = Placed(size, {1e9, -1e9, 0});
        placement.scale = {0, 1e9, -1};
        placement.rotation = {1e9, -720, 90};
        stage.Add(testing::Plain(1, 1, testing::red), placement);
    }
    CHECK(stage.Frame().At(4, 4) == testing::black);
}

TEST_CASE("What one container's module sets, the next container does not see") {
    testing::ProbedHost probed(8);
    Placement right = Placed({20, 20}, {40, 0, 1});
    const ObjectId other = probed.host->AddContainer(right);
    probed.host->SetPicture(other, testing::Plain(1, 1, testing::red));
    probed.InRender([] {
        for (const std::int32_t unit : {3, 2, 1, 0}) {
            kelGL_glActiveTexture(unit);
            kelGL_glTexEnvi(textureEnvironment, environmentMode, 0x8570);  // GL_COMBINE
            kelGL_glTexEnvi(textureEnvironment, 0x8571, 0x8575);           // GL_COMBINE_RGB: GL_INTERPOLATE
            kelGL_glMatrixMode(0x1702);
            kelGL_glScalef(7, 7, 7);
            kelGL_glEnable(0x0DE1);  // GL_TEXTURE_2D
        }
        kelGL_glMatrixMode(0x1700);
        kelGL_glTranslatef(1000, 0, 0);
        kelGL_glDisable(0x0B71);  // GL_DEPTH_TEST
        kelGL_glEnable(0x0B50);   // GL_LIGHTING
        kelGL_glEnable(0x0B44);   // GL_CULL_FACE
        kelGL_glBlendFunc(0, 0);
        kelGL_glPixelStorei(0x0CF2, 99);
    });
    CHECK(probed.host->ReadFrame().At(7, 4) == testing::red);
    CHECK(probed.host->ReadFrame().At(2, 4) == testing::black);  // moved out of sight by its module
    CHECK(probed.host->WrongUses().empty());
}

// The host gives texture coordinates of the container's own divided by 100 on every unit: with an identity matrix the
// container's middle is the texture's corner (0, 0), and its upper right quarter shows the texture from there to (0.5,
// 0.5).
TEST_CASE("Texture coordinates are the container's own divided by 100, on all units") {
    for (const std::int32_t unit : {0, 1, 2, 3}) {
        CAPTURE(unit);
        testing::ProbedHost probed(8);
        // Bottom row first: red and green below, blue and white above.
        constexpr std::array<std::uint8_t, 16> pixels{255, 0, 0,   255, 0,   255, 0,   255,
                                                      0,   0, 255, 255, 255, 255, 255, 255};
        std::int32_t image = noObject;
        probed.InField([&] {
            std::int32_t texture = noObject;
            image = _api__create_image(-1, 2, 2, rgba);
            _api__texture_create_texture(&texture, image);
            _api__set_texture_qual_type(texture, 0);
            _api__set_texture_wrap_type(texture, 0x2901);  // GL_REPEAT
            _api__container_set_multi_texture(probed.container, unit, texture);
        });
        probed.InRender([&] {
            _api__image_subtexload(image, -1, 0, 0, 2, 2, rgba, unsignedByte, pixels.data());
            kelGL_glActiveTexture(unit);
            kelGL_glTexEnvi(textureEnvironment, environmentMode, replaceMode);
            kelGL_glMatrixMode(0x1702);
            kelGL_glLoadIdentity();
            kelGL_glMatrixMode(0x1700);
        });
        const picture_io::Picture frame = probed.host->ReadFrame();
        CHECK_EQ(testing::Text(frame.At(6, 1)), testing::Text(testing::red));    // (0, 0) to (0.5, 0.5)
        CHECK_EQ(testing::Text(frame.At(1, 1)), testing::Text(testing::green));  // wraps to (0.5, 0) to (1, 0.5)
        CHECK_EQ(testing::Text(frame.At(6, 6)), testing::Text(testing::blue));
        CHECK_EQ(testing::Text(frame.At(1, 6)), testing::Text(testing::white));
    }
}

// Rows of a region lie as far apart as the unpack row length says; the rest of the texture stays.
TEST_CASE("A partial upload takes its region out of a wider picture") {
    testing::ProbedHost probed(4);
    std::array<std::uint8_t, 64> source{};
    for (std::size_t i = 0; i < 16; ++i) source[i * 4] = static_cast<std::uint8_t>(i), source[i * 4 + 3] = 255;
    std::int32_t image = noObject;
    probed.InField([&] {
        std::int32_t texture = noObject;
        image = _api__create_image(-1, 4, 4, rgba);
        _api__rebuild_texture(image);
        _api__texture_create_texture(&texture, image);
        _api__container_set_multi_texture(probed.container, 1, texture);
    });
    probed.InRender([&] {
        kelGL_glPixelStorei(0x0CF2, 4);
        _api__image_subtexload(image, -1, 1, 2, 2, 2, rgba, unsignedByte, source.data() + (2 * 4 + 1) * 4);
        kelGL_glPixelStorei(0x0CF2, 0);
    });
    const picture_io::Picture canvas = probed.host->ReadCanvas(probed.container);
    // Upright: texture row 2 is the second from the top.
    CHECK_EQ(testing::Text(canvas.At(1, 1)), testing::Text({9, 0, 0, 255}));
    CHECK_EQ(testing::Text(canvas.At(2, 0)), testing::Text({14, 0, 0, 255}));
    CHECK_EQ(testing::Text(canvas.At(0, 1)), testing::Text({0, 0, 0, 0}));
    CHECK_EQ(testing::Text(canvas.At(1, 2)), testing::Text({0, 0, 0, 0}));
}

// 64 * 255 / 128 = 127.5, rounded up; 200 is more than its alpha allows and ends at 255.
TEST_CASE("A canvas is read with its colours divided by alpha, or as they are") {
    testing::ProbedHost probed(4);
    constexpr std::array<std::uint8_t, 8> pixels{64, 128, 200, 128, 9, 9, 9, 0};
    probed.InField([&] {
        std::int32_t texture = noObject;
        const std::int32_t image = _api__create_image(-1, 2, 1, rgba);
        _api__image_subtexload(image, -1, 0, 0, 2, 1, rgba, unsignedByte, pixels.data());
        _api__texture_create_texture(&texture, image);
        _api__container_set_multi_texture(probed.container, 2, texture);
    });
    const picture_io::Picture straight = probed.host->ReadCanvas(probed.container);
    CHECK_EQ(testing::Text(straight.At(0, 0)), testing::Text({128, 255, 255, 128}));
    CHECK_EQ(testing::Text(straight.At(1, 0)), testing::Text({9, 9, 9, 0}));
    const picture_io::Picture stored = probed.host->ReadPremultipliedCanvas(probed.container);
    CHECK_EQ(testing::Text(stored.At(0, 0)), testing::Text({64, 128, 200, 128}));
}

TEST_CASE("Deleting a container's texture takes the module's from unit 0 first, then the picture") {
    testing::ProbedHost probed(4);
    probed.host->SetPicture(probed.container, testing::Plain(1, 1, testing::red));
    const auto middle = [&] { return probed.host->ReadFrame().At(2, 2); };
    probed.InField([&] {
        std::int32_t texture = noObject;
        const std::int32_t image = _api__create_image(-1, 1, 1, rgba);
        constexpr std::array<std::uint8_t, 4> pixel{0, 0, 255, 255};
        _api__image_subtexload(image, -1, 0, 0, 1, 1, rgba, unsignedByte, pixel.data());
        _api__texture_create_texture(&texture, image);
        _api__set_texture_qual_type(texture, 0);
        _api__container_set_multi_texture(probed.container, 0, texture);
        _api__scene_redraw();
    });
    CHECK(middle() == testing::blue);
    probed.InField([&] { _api__container_delete_texture(probed.container); });
    CHECK(middle() == testing::red);
    probed.InField([&] { _api__container_delete_texture(probed.container); });
    CHECK(middle() == testing::white);
    CHECK(probed.host->WrongUses().empty());
}

}  // namespace kel
