#include "kel/scene/frame_buffer.h"

#include <algorithm>
#include <string>

#include "cli/error.h"
#include "kel/scene/gl.h"

namespace kel {
namespace {

GLuint AttachStorage(GLenum place, GLenum format, std::int32_t width, std::int32_t height) {
    GLuint storage = 0;
    glGenRenderbuffers(1, &storage);
    glBindRenderbuffer(GL_RENDERBUFFER, storage);
    glRenderbufferStorage(GL_RENDERBUFFER, format, width, height);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, place, GL_RENDERBUFFER, storage);
    return storage;
}

}  // namespace

FrameArea Intersection(const FrameArea& one, const FrameArea& other) {
    const std::int32_t x = std::max(one.x, other.x);
    const std::int32_t y = std::max(one.y, other.y);
    return {x, y, std::max(std::min(one.x + one.width, other.x + other.width) - x, 0),
            std::max(std::min(one.y + one.height, other.y + other.height) - y, 0)};
}

FrameBuffer::FrameBuffer(std::int32_t width, std::int32_t height) : m_width(width), m_height(height) {
    if (width < 1 || height < 1 || width > picture_io::largestPictureSide || height > picture_io::largestPictureSide)
        throw cli::Error("a window of " + std::to_string(width) + " x " + std::to_string(height) +
                         " pixels: sides of 1 to " + std::to_string(picture_io::largestPictureSide) + " are possible");
    glGenFramebuffers(1, &m_frame);
    glBindFramebuffer(GL_FRAMEBUFFER, m_frame);
    m_colour = AttachStorage(GL_COLOR_ATTACHMENT0, GL_RGBA8, width, height);
    m_depth = AttachStorage(GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24, width, height);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE)
        throw cli::Error("OpenGL cannot draw " + std::to_string(width) + " x " + std::to_string(height) + " pixels");
    BindAndClear(0);
}

FrameBuffer::~FrameBuffer() {
    glDeleteFramebuffers(1, &m_frame);
    glDeleteRenderbuffers(1, &m_colour);
    glDeleteRenderbuffers(1, &m_depth);
}

void FrameBuffer::Bind() const {
    glBindFramebuffer(GL_FRAMEBUFFER, m_frame);
    glViewport(0, 0, m_width, m_height);
}

void FrameBuffer::BindAndClear(float grey) const {
    Bind();
    glClearColor(grey, grey, grey, 1);
    glDepthMask(GL_TRUE);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

picture_io::Picture FrameBuffer::Read() const { return Read({0, 0, m_width, m_height}); }

picture_io::Picture FrameBuffer::Read(const FrameArea& area) const {
    picture_io::Picture picture(area.width, area.height);
    glBindFramebuffer(GL_FRAMEBUFFER, m_frame);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(area.x, area.y, area.width, area.height, GL_RGBA, GL_UNSIGNED_BYTE, picture.rgba.data());
    // Blending leaves an alpha behind that means nothing: behind everything stands black.
    for (std::size_t alpha = 3; alpha < picture.rgba.size(); alpha += 4) picture.rgba[alpha] = 255;
    return picture_io::Flipped(picture);
}

void FrameBuffer::ReadForScreen(const FrameArea& area, void* pixels, std::int32_t rowPixels) const {
    glBindFramebuffer(GL_FRAMEBUFFER, m_frame);
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glPixelStorei(GL_PACK_ROW_LENGTH, rowPixels);
    glPixelStorei(GL_PACK_INVERT_MESA, GL_TRUE);
    glReadPixels(area.x, area.y, area.width, area.height, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, pixels);
    glPixelStorei(GL_PACK_INVERT_MESA, GL_FALSE);
    glPixelStorei(GL_PACK_ROW_LENGTH, 0);
}

void FrameBuffer::Copy(std::uint32_t texture, std::int32_t x, std::int32_t y, const FrameArea& area) const {
    glCopyImageSubData(texture, GL_TEXTURE_2D, 0, x, y, 0, m_colour, GL_RENDERBUFFER, 0, area.x, area.y, 0, area.width,
                       area.height, 1);
}

void FrameBuffer::ShowIn(const FrameArea& area, std::uint32_t target) const {
    glBindFramebuffer(GL_READ_FRAMEBUFFER, m_frame);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, target);
    const bool isSameSize = area.width == m_width && area.height == m_height;
    glBlitFramebuffer(0, 0, m_width, m_height, area.x, area.y, area.x + area.width, area.y + area.height,
                      GL_COLOR_BUFFER_BIT, isSameSize ? GL_NEAREST : GL_LINEAR);
    glBindFramebuffer(GL_FRAMEBUFFER, target);
}

}  // namespace kel
