#include "kel/scene/gl_call.h"

#include <bit>

#include "kel/scene/gl.h"

namespace kel {

void GlCall::Do() const {
    const auto real = [this](std::size_t i) { return std::bit_cast<float>(words[i]); };
    switch (function) {
        case Function::ActiveTexture:
            return glActiveTexture(GL_TEXTURE0 + words[0]);
        case Function::TexEnvi:
            return glTexEnvi(words[0], words[1], static_cast<GLint>(words[2]));
        case Function::MatrixMode:
            return glMatrixMode(words[0]);
        case Function::LoadIdentity:
            return glLoadIdentity();
        case Function::Translatef:
            return glTranslatef(real(0), real(1), real(2));
        case Function::Scalef:
            return glScalef(real(0), real(1), real(2));
        case Function::Enable:
            return glEnable(words[0]);
        case Function::Disable:
            return glDisable(words[0]);
        case Function::BlendFunc:
            return glBlendFunc(words[0], words[1]);
    }
}

bool GlCall::IsScissor() const {
    return (function == Function::Enable || function == Function::Disable) && words[0] == GL_SCISSOR_TEST;
}

}  // namespace kel
