#include "kel/scene/frame_shrinker.h"

#include <doctest/doctest.h>

#include "kel/scene/gl.h"
#include "kel/scene/gl_context.h"
#include "tests/kel/pixels.h"

namespace kel {
namespace {

void Fill(const FrameBuffer& frame, const FrameArea& area, float grey) {
    glEnable(GL_SCISSOR_TEST);
    glScissor(area.x, area.y, area.width, area.height);
    frame.BindAndClear(grey);
    glDisable(GL_SCISSOR_TEST);
}

// White with every fourth column black.
void FillWithStripes(const FrameBuffer& frame) {
    frame.BindAndClear(1);
    for (std::int32_t x = 0; x < frame.Width(); x += 4) Fill(frame, {x, 0, 1, frame.Height()}, 0);
}

// What a part of a frame looks like in a quarter of its size, and the rest of that grey.
picture_io::Picture Shown(const FrameBuffer& frame, const FrameArea& part) {
    const FrameBuffer target(frame.Width() / 4, frame.Height() / 4);
    target.BindAndClear(0.5F);
    GLint name = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &name);
    FrameShrinker shrinker;
    shrinker.Show(frame, {0, 0, target.Width(), target.Height()}, part, static_cast<std::uint32_t>(name));
    return target.Read();
}

}  // namespace

// Halved once, black and white are 127.5 beside 255, and halved again 191.25. Four of sixteen pixels alone, those in
// the middle, would be 255.
TEST_CASE("A frame that is shown at a quarter of its size passes over none of its pixels") {
    const GlContext context;
    const FrameBuffer frame(128, 64);
    FillWithStripes(frame);
    const picture_io::Picture shown = Shown(frame, {0, 0, 32, 16});
    for (std::int32_t y = 0; y < 16; ++y)
        for (std::int32_t x = 0; x < 32; ++x) CHECK_LE(testing::Difference(shown.At(x, y), {191, 191, 191, 255}), 1);
}

TEST_CASE("A part of a frame that is shown smaller looks as it does in all of it, and nothing beside it changes") {
    const GlContext context;
    const FrameBuffer frame(126, 62);
    FillWithStripes(frame);
    Fill(frame, {40, 10, 30, 30}, 0.2F);
    const picture_io::Picture whole = Shown(frame, {0, 0, 31, 15});
    const FrameArea part{9, 4, 7, 6};
    const picture_io::Picture shown = Shown(frame, part);
    for (std::int32_t y = 0; y < shown.height; ++y)
        for (std::int32_t x = 0; x < shown.width; ++x) {
            const std::int32_t up = shown.height - 1 - y;
            const bool isIn = x >= part.x && x < part.x + part.width && up >= part.y && up < part.y + part.height;
            CHECK_EQ(shown.At(x, y), isIn ? whole.At(x, y) : testing::Pixel{128, 128, 128, 255});
        }
    CHECK_EQ(Shown(frame, {3, 3, 0, 0}) == testing::Plain(31, 15, {128, 128, 128, 255}), true);
}

}  // namespace kel
