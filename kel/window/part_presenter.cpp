#include "kel/window/part_presenter.h"

#include <SDL.h>

#include <string_view>

#if KEL_WITH_X11
#include <SDL_syswm.h>
#include <X11/Xproto.h>
#endif

namespace kel {
#if KEL_WITH_X11
namespace {

template <typename Function>
Function GlxFunction(const char* name) {
    return reinterpret_cast<Function>(SDL_GL_GetProcAddress(name));
}

bool HasExtension(Display* display, std::string_view wanted) {
    const auto extensions = GlxFunction<const char* (*)(Display*, int)>("glXQueryExtensionsString");
    const auto drawable = GlxFunction<unsigned long (*)()>("glXGetCurrentDrawable");
    // A context that is not of GLX has no such drawable.
    if (extensions == nullptr || drawable == nullptr || drawable() == 0) return false;
    const char* all = extensions(display, DefaultScreen(display));
    return all != nullptr && std::string_view(all).find(wanted) != std::string_view::npos;
}

XErrorHandler& ErrorsBefore() {
    static XErrorHandler before = nullptr;
    return before;
}

// A window that is made smaller while a part of it is on its way makes the part reach beyond it, and the server refuses
// that with an error, which would end the program. All of the window is drawn anew then anyway.
int PassOverLateParts(Display* display, XErrorEvent* error) {
    constexpr int firstExtension = 128;
    const bool isLatePart =
        error->request_code >= firstExtension && (error->error_code == BadValue || error->error_code == BadMatch);
    if (isLatePart || ErrorsBefore() == nullptr) return 0;
    return ErrorsBefore()(display, error);
}

}  // namespace

PartPresenter::PartPresenter(SDL_Window* window) {
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (SDL_GetWindowWMInfo(window, &info) != SDL_TRUE || info.subsystem != SDL_SYSWM_X11) return;
    if (!HasExtension(info.info.x11.display, "GLX_MESA_copy_sub_buffer")) return;
    m_copy = GlxFunction<Copy>("glXCopySubBufferMESA");
    m_display = info.info.x11.display;
    m_drawable = info.info.x11.window;
    static const bool isHandled = [] {
        ErrorsBefore() = XSetErrorHandler(PassOverLateParts);
        return true;
    }();
    (void)isHandled;
}
#else
PartPresenter::PartPresenter(SDL_Window*) {}
#endif

void PartPresenter::Show(const FrameArea& part) const {
    m_copy(m_display, m_drawable, part.x, part.y, part.width, part.height);
}

}  // namespace kel
