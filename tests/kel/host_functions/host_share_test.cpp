#include <doctest/doctest.h>

#include <array>
#include <memory>

#include "kel/scene/gl.h"
#include "kel/scene/host.h"
#include "tests/kel/pixels.h"
#include "tests/kel/probe.h"

namespace kel {
namespace {

// Fills its square window exactly.
ObjectId AddPlain(Host& host, const testing::Pixel& colour) {
    host.SetCamera(testing::CameraInFront());
    const ObjectId container = host.AddContainer({});
    host.SetPicture(container, testing::Plain(8, 8, colour));
    return container;
}

}  // namespace

TEST_CASE("Two hosts of one thread take turns in one OpenGL context, and each keeps its picture") {
    const GlContext context;
    Host first({16, 16}, GlSource::Current);
    AddPlain(first, testing::red);
    first.RunField();
    {
        Host second({16, 16}, GlSource::Current);
        AddPlain(second, testing::blue);
        second.RunField();
        CHECK_EQ(first.ReadFrame().At(8, 8), testing::red);
        CHECK_EQ(second.ReadFrame().At(8, 8), testing::blue);
    }
    first.SetDrawing(true);
    first.RunField();
    CHECK_EQ(first.ReadFrame().At(8, 8), testing::red);
}

TEST_CASE("Two hosts of one thread have an OpenGL context each, and one ends while the other goes on") {
    auto first = std::make_unique<Host>(WindowSize{16, 16});
    AddPlain(*first, testing::red);
    first->RunField();
    Host second({16, 16});
    AddPlain(second, testing::blue);
    second.RunField();
    CHECK_EQ(first->ReadFrame().At(8, 8), testing::red);
    first.reset();
    CHECK_EQ(second.ReadFrame().At(8, 8), testing::blue);
    AddPlain(second, testing::green);  // the same window: what comes later lies in front
    second.RunField();
    CHECK_EQ(second.ReadFrame().At(8, 8), testing::green);
}

TEST_CASE("A frame is shown in an area of another framebuffer, upright and scaled to it") {
    const GlContext context;
    Host host({16, 16}, GlSource::Current);
    const ObjectId container = AddPlain(host, testing::red);
    picture_io::Picture halves = testing::Plain(8, 8, testing::red);
    for (std::int32_t x = 0; x < 8; ++x)
        for (std::int32_t y = 4; y < 8; ++y) halves.Set(x, y, testing::green);
    host.SetPicture(container, halves);
    host.RunField();

    GLuint target = 0;
    GLuint colour = 0;
    glGenFramebuffers(1, &target);
    glGenRenderbuffers(1, &colour);
    glBindFramebuffer(GL_FRAMEBUFFER, target);
    glBindRenderbuffer(GL_RENDERBUFFER, colour);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, 64, 64);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, colour);
    glDisable(GL_SCISSOR_TEST);
    glClearColor(0, 0, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    host.ShowFrame({10, 20, 32, 32}, target);
    const auto at = [](GLint x, GLint y) {
        testing::Pixel pixel{};
        glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
        return pixel;
    };
    // Rows of a framebuffer run from the bottom: the green lower half of the picture is the lower one here.
    CHECK_EQ(at(12, 22), testing::green);
    CHECK_EQ(at(40, 50), testing::red);
    CHECK_EQ(at(8, 22), testing::blue);
    CHECK_EQ(at(12, 54), testing::blue);
    glDeleteFramebuffers(1, &target);
    glDeleteRenderbuffers(1, &colour);
}

}  // namespace kel
