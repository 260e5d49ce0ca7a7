#include "kel/window/display_scale.h"

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string_view>

#if KEL_WITH_X11
#include <SDL_syswm.h>
#endif

namespace kel {
namespace {

#if KEL_WITH_X11
// Of the resources that a desktop gives to all programs, a line each; 0: there is none.
double DesktopPixelsPerInch(SDL_Window* window) {
    constexpr std::string_view name = "Xft.dpi:";
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (SDL_GetWindowWMInfo(window, &info) != SDL_TRUE || info.subsystem != SDL_SYSWM_X11) return 0;
    const char* resources = XResourceManagerString(info.info.x11.display);
    if (resources == nullptr) return 0;
    std::string_view rest = resources;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        if (line.starts_with(name)) return std::strtod(line.data() + name.size(), nullptr);
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    }
    return 0;
}
#else
double DesktopPixelsPerInch(SDL_Window*) { return 0; }
#endif

}  // namespace

float ScaleForPixelsPerInch(double perInch) {
    constexpr double usual = 96;
    constexpr double most = 4;
    if (!(perInch > 0)) return 1;
    return static_cast<float>(std::clamp(std::round(perInch / usual * 4) / 4, 1.0, most));
}

float DisplayScale(SDL_Window* window) { return ScaleForPixelsPerInch(DesktopPixelsPerInch(window)); }

}  // namespace kel
