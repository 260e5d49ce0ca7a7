#include "kel/window/strokes_texture.h"

#include <initializer_list>

#include "kel/scene/gl.h"

namespace kel {
namespace {

using Names = std::initializer_list<GLenum>;

// All that drawing a texture changes, put back at the end: the next module's drawing begins where the last one ended.
class StateKept {
public:
    StateKept() {
        glPushAttrib(GL_ALL_ATTRIB_BITS);
        glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
        glActiveTexture(GL_TEXTURE0);
        for (const GLenum matrix : Names{GL_TEXTURE, GL_PROJECTION, GL_MODELVIEW}) {
            glMatrixMode(matrix);
            glPushMatrix();
            glLoadIdentity();
        }
    }
    ~StateKept() {
        for (const GLenum matrix : Names{GL_MODELVIEW, GL_PROJECTION, GL_TEXTURE}) {
            glMatrixMode(matrix);
            glPopMatrix();
        }
        glPopClientAttrib();
        glPopAttrib();
    }
    StateKept(const StateKept&) = delete;
    StateKept& operator=(const StateKept&) = delete;
    StateKept(StateKept&&) = delete;
    StateKept& operator=(StateKept&&) = delete;
};

// Modules draw with several.
void LeaveOneUnit() {
    GLint units = 1;
    glGetIntegerv(GL_MAX_TEXTURE_UNITS, &units);
    for (GLint unit = units - 1; unit >= 0; --unit) {
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
        glDisable(GL_TEXTURE_2D);
    }
}

void TakeFromTexture(GLenum operand) {
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_COMBINE);
    glTexEnvi(GL_TEXTURE_ENV, GL_COMBINE_RGB, GL_REPLACE);
    glTexEnvi(GL_TEXTURE_ENV, GL_SOURCE0_RGB, GL_TEXTURE);
    glTexEnvi(GL_TEXTURE_ENV, GL_OPERAND0_RGB, static_cast<GLint>(operand));
}

// The first row of a picture is the top one, and of a texture the bottom one.
void DrawUpsideDown() {
    glBegin(GL_TRIANGLE_STRIP);
    for (const float x : {0.0F, 1.0F})
        for (const float y : {0.0F, 1.0F}) {
            glTexCoord2f(x, 1 - y);
            glVertex2f(2 * x - 1, 2 * y - 1);
        }
    glEnd();
}

}  // namespace

void StrokesTexture::Renew(const picture_io::Picture& strokes, const FrameArea& changed) {
    const StateKept kept;
    const bool isOther = strokes.width != m_width || strokes.height != m_height;
    if (isOther) m_texture = GlTexture::Generate();
    m_width = strokes.width;
    m_height = strokes.height;
    const BoundTexture bound(m_texture);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    if (isOther) {
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, m_width, m_height, 0, GL_RGBA, GL_UNSIGNED_BYTE, strokes.rgba.data());
        return;
    }
    const FrameArea part = Intersection(changed, {0, 0, m_width, m_height});
    if (part.IsEmpty()) return;
    const std::int32_t top = m_height - part.y - part.height;
    glPixelStorei(GL_UNPACK_ROW_LENGTH, m_width);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, part.x);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, top);
    glTexSubImage2D(GL_TEXTURE_2D, 0, part.x, top, part.width, part.height, GL_RGBA, GL_UNSIGNED_BYTE,
                    strokes.rgba.data());
}

void StrokesTexture::Show(Look look, const FrameArea& area, const FrameArea& part) const {
    // First: the buffer that is drawn into is part of the state, and another framebuffer does not have it.
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    const StateKept kept;
    LeaveOneUnit();
    const BoundTexture bound(m_texture);
    for (const GLenum test : Names{GL_DEPTH_TEST, GL_BLEND, GL_ALPHA_TEST, GL_LIGHTING, GL_CULL_FACE, GL_STENCIL_TEST})
        glDisable(test);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_SCISSOR_TEST);
    glScissor(part.x, part.y, part.width, part.height);
    glViewport(area.x, area.y, area.width, area.height);
    TakeFromTexture(look == Look::Colours ? GL_SRC_COLOR : GL_SRC_ALPHA);
    DrawUpsideDown();
}

}  // namespace kel
