#include <doctest/doctest.h>

#include <array>

#include "module/abi/host_api.h"
#include "tests/kel/gl_formats.h"
#include "tests/kel/misused_host.h"
#include "tests/kel/probe.h"

namespace kel {
namespace {

using testing::rgba;

std::int32_t Camera62(const char* cameraName = "RENDERCAMERA") {
    std::array<char, 6> scene{"SCENE"};
    std::string camera(cameraName);
    std::int32_t word = 0;
    const std::int32_t current = _api__get_scene_current_camera(_api__get_sceneid_local(scene.data(), 0), &word);
    return _api__get_cameraid(current, camera.data(), 62);
}

}  // namespace

TEST_CASE("An instance is told its own container") {
    testing::ProbedHost probed;
    std::int32_t word = 0;
    std::int32_t own = 0;
    probed.InField([&] { own = _api__get_objectid_local(&word, 2); });
    CHECK_EQ(own, probed.container);
    CHECK_EQ(word, 0);
}

TEST_CASE("Each instance is told its own container") {
    testing::ProbedHost probed;
    const ObjectId second = probed.host->AddContainer({});
    probed.host->Attach(second, probed.host->LoadModule(PROBE_MODULE));
    std::vector<std::int32_t> own;
    probed.InField([&] {
        std::int32_t word = 0;
        own.push_back(_api__get_objectid_local(&word, 2));
    });
    CHECK_EQ(own, std::vector<std::int32_t>{probed.container, second});
}

TEST_CASE("The bounding box is in the container's own coordinates, whatever its place and scale") {
    testing::ProbedHost probed;
    Placement placement;
    placement.size = {40, 30};
    placement.position = {7, 8, 9};
    placement.scale = {2, 2, 2};
    const ObjectId id = probed.host->AddContainer(placement);
    std::array<float, 6> box{9, 9, 9, 9, 9, 9};
    probed.InField([&] { _api__container_get_bounding_box(id, &box[0], &box[1], &box[2], &box[3], &box[4], &box[5]); });
    CHECK_EQ(box, std::array<float, 6>{-20, -15, 0, 20, 15, 0});
}

TEST_CASE("The transformation matrix leads from the container to the world") {
    testing::ProbedHost probed;
    Placement placement;
    placement.position = {7, 8, 9};
    placement.scale = {2, 3, 4};
    const ObjectId id = probed.host->AddContainer(placement);
    std::array<float, 16> matrix{};
    probed.InField([&] { _api__container_get_transformation_matrix(id, matrix.data()); });
    CHECK_EQ(matrix, std::array<float, 16>{2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 7, 8, 9, 1});
}

// The window shows 100 x 100 at z = 0, so the middle of its right side at that depth is (50, 0, 0).
TEST_CASE("The camera matrix unprojects window points to the world") {
    testing::ProbedHost probed(200);
    std::array<float, 16> camera{};
    std::array<double, 3> nearPoint{};
    std::array<double, 3> farPoint{};
    probed.InField([&] {
        _api__get_camera_matrix(Camera62(), camera.data());
        const std::array<double, 16> identity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
        std::array<double, 16> projection{};
        std::copy(camera.begin(), camera.end(), projection.begin());
        const std::array<std::int32_t, 4> viewport{0, 0, 200, 200};
        for (auto [depth, point] : {std::pair{0, &nearPoint}, std::pair{1, &farPoint}})
            CHECK_EQ(kelGL_gluUnProject(200, 100, depth, identity.data(), projection.data(), viewport.data(),
                                        &(*point)[0], &(*point)[1], &(*point)[2]),
                     1);
    });
    const double along = nearPoint[2] / (nearPoint[2] - farPoint[2]);
    CHECK_EQ(nearPoint[0] + along * (farPoint[0] - nearPoint[0]), doctest::Approx(50).epsilon(1e-4));
    CHECK_EQ(nearPoint[1] + along * (farPoint[1] - nearPoint[1]), doctest::Approx(0));
}

TEST_CASE("What cannot be unprojected answers 0") {
    testing::ProbedHost probed;
    std::int32_t answer = 5;
    probed.InField([&] {
        const std::array<double, 16> zero{};
        const std::array<std::int32_t, 4> viewport{0, 0, 200, 200};
        std::array<double, 3> point{};
        answer =
            kelGL_gluUnProject(1, 2, 0, zero.data(), zero.data(), viewport.data(), &point[0], &point[1], &point[2]);
    });
    CHECK_EQ(answer, 0);
}

TEST_CASE("Scene and camera are found by their names alone") {
    testing::MisusedHost probed;
    std::int32_t camera = 0;
    std::int32_t other = 0;
    bool valid = false;
    probed.InField([&] {
        camera = Camera62();
        valid = _api__object_valid(camera) != 0;
        other = Camera62("EDITCAMERA");
    });
    CHECK_GT(camera, 0);
    CHECK(valid);
    CHECK_EQ(other, noObject);
}

TEST_CASE("Window and pointer are as they are") {
    testing::ProbedHost probed(64);
    probed.host->ResizeWindow({320, 200});
    probed.host->QueuePointer(PointerKind::Move, -4, 999);
    std::array<std::int32_t, 4> answers{};
    probed.InField([&] {
        _api__tessmar_get_window_size(&answers[0], &answers[1]);
        _api__tessmar_query_mouse_pos(0, &answers[2], &answers[3]);
    });
    CHECK_EQ(answers, std::array<std::int32_t, 4>{320, 200, -4, 999});
    CHECK_EQ(probed.host->ReadFrame().width, 320);
}

// Rows run from the bottom, as OpenGL counts them.
TEST_CASE("An image is found by its name, with its pixels from the bottom row up") {
    testing::ProbedHost probed;
    picture_io::Picture picture(2, 3);
    picture.Set(0, 2, {1, 2, 3, 4});
    probed.host->AddImage("chalk.png", picture);
    std::int32_t id = 0;
    std::int32_t other = 0;
    std::int32_t nothing = 0;
    std::array<std::int32_t, 3> facts{};
    std::array<std::uint8_t, 4> first{};
    probed.InField([&] {
        id = _api__get_image_objectid("chalk.png");
        other = _api__get_image_objectid("cheese.png");
        nothing = _api__get_image_objectid("");
        _api__get_image_size(id, &facts[0], &facts[1]);
        _api__get_image_format(id, &facts[2]);
        void* data = nullptr;
        _api__get_image_data(id, &data);
        std::copy_n(static_cast<const std::uint8_t*>(data), 4, first.begin());
    });
    CHECK_GT(id, 0);
    CHECK_EQ(other, noObject);
    CHECK_EQ(nothing, noObject);
    CHECK_EQ(facts, std::array<std::int32_t, 3>{2, 3, rgba});
    CHECK_EQ(first, std::array<std::uint8_t, 4>{1, 2, 3, 4});
}

TEST_CASE("Images and textures live from their creation to their deletion") {
    testing::ProbedHost probed;
    probed.InField([] {
        std::int32_t image = _api__create_image(-1, 4, 4, rgba);
        std::int32_t texture = noObject;
        _api__texture_create_texture(&texture, image);
        const std::int32_t imageId = image;
        const std::int32_t textureId = texture;
        CHECK_EQ(_api__object_valid(imageId), 1);
        CHECK_EQ(_api__object_valid(textureId), 1);
        _api__texture_delete_texture(&texture);
        _api__image_delete_image(&image);
        CHECK_EQ(image, noObject);
        CHECK_EQ(texture, noObject);
        CHECK_EQ(_api__object_valid(imageId), 0);
        CHECK_EQ(_api__object_valid(textureId), 0);
        CHECK_GT(_api__create_image(-1, 4, 4, rgba), textureId);
    });
    CHECK(probed.host->WrongUses().empty());
}

TEST_CASE("An object marked as changed is rendered anew") {
    testing::ProbedHost probed;
    probed.host->RunField();
    int renders = 0;
    probed.hooks.preRender = [&] { ++renders; };
    probed.InField([] {});
    CHECK_EQ(renders, 0);
    probed.InField([&] { _api__set_changed(probed.container); });
    CHECK_EQ(renders, 1);
}

TEST_CASE("A module reads back the OpenGL state that it sets") {
    testing::ProbedHost probed;
    constexpr std::uint32_t blend = 0x0BE2;
    constexpr std::uint32_t blendSource = 0x0BE1;
    std::array<std::int32_t, 3> read{};
    probed.InRender([&] {
        kelGL_glGetIntegerv(blend, &read[0]);
        kelGL_glDisable(blend);
        kelGL_glGetIntegerv(blend, &read[1]);
        kelGL_glBlendFunc(1, 0x0303);
        kelGL_glGetIntegerv(blendSource, &read[2]);
    });
    CHECK_EQ(read, std::array<std::int32_t, 3>{1, 0, 1});
}

}  // namespace kel
