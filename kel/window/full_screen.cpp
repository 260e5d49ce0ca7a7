#include "kel/window/full_screen.h"

#include <SDL.h>

#if KEL_WITH_X11
#include <SDL_syswm.h>
#include <X11/Xatom.h>
#endif

namespace kel {
namespace {

#if KEL_WITH_X11
// Whoever manages windows says so at the display's root.
bool IsManaged(SDL_Window* window) {
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (SDL_GetWindowWMInfo(window, &info) != SDL_TRUE || info.subsystem != SDL_SYSWM_X11) return true;
    Display* const display = info.info.x11.display;
    const Atom check = XInternAtom(display, "_NET_SUPPORTING_WM_CHECK", False);
    Atom type = 0;
    int format = 0;
    unsigned long items = 0;
    unsigned long left = 0;
    unsigned char* value = nullptr;
    const int answer = XGetWindowProperty(display, DefaultRootWindow(display), check, 0, 1, False, XA_WINDOW, &type,
                                          &format, &items, &left, &value);
    if (value != nullptr) XFree(value);
    return answer == Success && items == 1;
}
#else
bool IsManaged(SDL_Window*) { return true; }
#endif

void Place(SDL_Window* window, const PictureArea& area) {
    SDL_SetWindowSize(window, area.width, area.height);
    SDL_SetWindowPosition(window, area.x, area.y);
}

}  // namespace

void FullScreen::Set(SDL_Window* window, bool on) {
    if (!m_isPlaced && (!on || IsManaged(window))) {
        SDL_SetWindowFullscreen(window, on ? SDL_WINDOW_FULLSCREEN_DESKTOP : 0);
        return;
    }
    if (on == m_isPlaced) return;
    m_isPlaced = on;
    if (!on) return Place(window, m_before);
    SDL_GetWindowPosition(window, &m_before.x, &m_before.y);
    SDL_GetWindowSize(window, &m_before.width, &m_before.height);
    SDL_Rect all{};
    if (SDL_GetDisplayBounds(SDL_GetWindowDisplayIndex(window), &all) == 0) Place(window, {all.x, all.y, all.w, all.h});
}

bool FullScreen::IsOn(SDL_Window* window) const {
    return m_isPlaced || (SDL_GetWindowFlags(window) & SDL_WINDOW_FULLSCREEN_DESKTOP) == SDL_WINDOW_FULLSCREEN_DESKTOP;
}

}  // namespace kel
