#include "kel/scene/gl_context.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <array>
#include <cstdio>
#include <string>

#include "cli/error.h"
#include "kel/scene/gl.h"

namespace kel {
namespace {

[[noreturn]] void Refuse(const char* what) {
    std::array<char, 120> text{};
    std::snprintf(text.data(), text.size(), "no OpenGL without a display: %s fails (EGL error 0x%x)", what,
                  static_cast<unsigned>(eglGetError()));
    throw cli::Error(text.data());
}

EGLDisplay OpenDisplay() {
    const auto getDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    if (getDisplay == nullptr) Refuse("eglGetPlatformDisplayEXT");
    const EGLDisplay display = getDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    if (display == EGL_NO_DISPLAY || eglInitialize(display, nullptr, nullptr) == EGL_FALSE) Refuse("eglInitialize");
    return display;
}

// Opened once and left open to the end of the process: the driver keeps threads and code that it has compiled.
EGLDisplay Display() {
    static const EGLDisplay display = OpenDisplay();
    return display;
}

EGLConfig ChooseConfig() {
    constexpr std::array<EGLint, 5> wanted{EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                                           EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (eglChooseConfig(Display(), wanted.data(), &config, 1, &count) == EGL_FALSE || count == 0)
        Refuse("eglChooseConfig");
    return config;
}

}  // namespace

GlContext::GlContext(GlSource source) {
    if (source == GlSource::Own) MakeOwn();
    GLint units = 0;
    glGetIntegerv(GL_MAX_TEXTURE_UNITS, &units);
    if (units >= textureUnits) return;
    EndOwn();
    throw cli::Error("OpenGL offers " + std::to_string(units) + " texture units and " + std::to_string(textureUnits) +
                     " are needed");
}

GlContext::~GlContext() { EndOwn(); }

void GlContext::MakeOwn() {
    Display();  // the interface is chosen for an open display
    if (eglBindAPI(EGL_OPENGL_API) == EGL_FALSE) Refuse("eglBindAPI");
    m_context = eglCreateContext(Display(), ChooseConfig(), EGL_NO_CONTEXT, nullptr);
    if (m_context == EGL_NO_CONTEXT) Refuse("eglCreateContext");
    try {
        Use();
    } catch (...) {
        eglDestroyContext(Display(), m_context);
        throw;
    }
}

void GlContext::Use() const {
    if (m_context == nullptr || eglGetCurrentContext() == m_context) return;
    // The scene is drawn into a framebuffer object, so the context has no surface of its own.
    if (eglMakeCurrent(Display(), EGL_NO_SURFACE, EGL_NO_SURFACE, m_context) == EGL_FALSE) Refuse("eglMakeCurrent");
}

void GlContext::EndOwn() {
    if (m_context == nullptr) return;
    if (eglGetCurrentContext() == m_context) eglMakeCurrent(Display(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(Display(), m_context);
}

}  // namespace kel
