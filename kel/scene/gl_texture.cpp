#include "kel/scene/gl_texture.h"

#include "kel/scene/gl.h"

namespace kel {

GlTexture GlTexture::Generate() {
    GlTexture texture;
    glGenTextures(1, &texture.m_name);
    return texture;
}

GlTexture::~GlTexture() {
    if (m_name != 0) glDeleteTextures(1, &m_name);
}

BoundTexture::BoundTexture(const GlTexture& texture) {
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &m_before);
    glBindTexture(GL_TEXTURE_2D, texture.Name());
}

BoundTexture::~BoundTexture() { glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(m_before)); }

}  // namespace kel
