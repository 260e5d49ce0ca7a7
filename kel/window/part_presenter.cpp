#include "kel/window/part_presenter.h"

#include <SDL.h>

#include <string_view>

#if KEL_WITH_X11
#include <EGL/egl.h>
#include <SDL_syswm.h>
#endif

namespace kel {
#if KEL_WITH_X11
namespace {

template <typename Function>
Function GlxFunction(const char* name) {
    return reinterpret_cast<Function>(SDL_GL_GetProcAddress(name));
}

// Under EGL the functions of GLX have addresses too, and no display behind them that knows them.
bool IsOfEgl() { return eglGetCurrentContext() != EGL_NO_CONTEXT; }

bool HasExtension(Display* display, std::string_view wanted) {
    const auto extensions = GlxFunction<const char* (*)(Display*, int)>("glXQueryExtensionsString");
    const auto drawable = GlxFunction<unsigned long (*)()>("glXGetCurrentDrawable");
    // A context that is not of GLX has no such drawable.
    if (extensions == nullptr || drawable == nullptr || drawable() == 0) return false;
    const char* all = extensions(display, DefaultScreen(display));
    return all != nullptr && std::string_view(all).find(wanted) != std::string_view::npos;
}

}  // namespace

PartPresenter::PartPresenter(SDL_Window* window) {
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (SDL_GetWindowWMInfo(window, &info) != SDL_TRUE || info.subsystem != SDL_SYSWM_X11) return;
    if (IsOfEgl() || !HasExtension(info.info.x11.display, "GLX_MESA_copy_sub_buffer")) return;
    m_copy = GlxFunction<Copy>("glXCopySubBufferMESA");
    m_display = info.info.x11.display;
    m_drawable = info.info.x11.window;
}
#else
PartPresenter::PartPresenter(SDL_Window*) {}
#endif

void PartPresenter::Show(const FrameArea& part) const {
    m_copy(m_display, m_drawable, part.x, part.y, part.width, part.height);
}

}  // namespace kel
