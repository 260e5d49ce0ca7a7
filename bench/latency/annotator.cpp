#include <SDL.h>
#define GL_GLEXT_PROTOTYPES 1
#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

// The two plain programs that the window is measured beside: both draw a red line of round dabs over a green sheet, on
// every batch of events, and do nothing else.
//
//   annotator part WIDTH HEIGHT     puts only the changed rectangle on the screen
//   annotator whole WIDTH HEIGHT    draws all of the window with OpenGL, and swaps
namespace {

constexpr std::uint32_t sheet = 0xFF2E7D46;  // A R G B
constexpr std::uint32_t ink = 0xFFFF2D2D;
constexpr int radius = 5;  // pixels, of a dab

struct Sheet {
    int width = 0;
    int height = 0;
    std::uint32_t* pixels = nullptr;
    std::ptrdiff_t stride = 0;  // pixels
};

void DrawDab(const Sheet& target, int x, int y) {
    for (int row = std::max(y - radius, 0); row <= std::min(y + radius, target.height - 1); ++row)
        for (int column = std::max(x - radius, 0); column <= std::min(x + radius, target.width - 1); ++column)
            if ((row - y) * (row - y) + (column - x) * (column - x) <= radius * radius)
                target.pixels[row * target.stride + column] = ink;
}

SDL_Rect DrawLine(const Sheet& target, SDL_Point from, SDL_Point to) {
    const int steps = std::max({std::abs(to.x - from.x), std::abs(to.y - from.y), 1});
    for (int i = 0; i <= steps; ++i)
        DrawDab(target, from.x + (to.x - from.x) * i / steps, from.y + (to.y - from.y) * i / steps);
    const SDL_Rect all{0, 0, target.width, target.height};
    const SDL_Rect line{std::min(from.x, to.x) - radius, std::min(from.y, to.y) - radius,
                        std::abs(to.x - from.x) + 2 * radius + 1, std::abs(to.y - from.y) + 2 * radius + 1};
    SDL_Rect changed{};
    SDL_IntersectRect(&all, &line, &changed);
    return changed;
}

// The pen, from the events that wait.
class Pen {
public:
    [[nodiscard]] bool IsOver() const { return m_isOver; }
    // True: the window has to be shown anew. `changed` grows by what was drawn.
    bool TakeEvents(const Sheet& target, SDL_Rect& changed) {
        SDL_Event event;
        bool isShown = false;
        for (bool waits = SDL_WaitEvent(&event) != 0; waits; waits = SDL_PollEvent(&event) != 0) {
            if (event.type == SDL_QUIT) m_isOver = true;
            if (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_EXPOSED) {
                changed = {0, 0, target.width, target.height};
                isShown = true;
            }
            if (event.type == SDL_MOUSEBUTTONDOWN) m_at = {event.button.x, event.button.y};
            const bool draws = event.type == SDL_MOUSEBUTTONDOWN ||
                               (event.type == SDL_MOUSEMOTION && (event.motion.state & SDL_BUTTON_LMASK) != 0);
            if (!draws) continue;
            const SDL_Point to = event.type == SDL_MOUSEMOTION ? SDL_Point{event.motion.x, event.motion.y} : m_at;
            const SDL_Rect line = DrawLine(target, m_at, to);
            if (SDL_RectEmpty(&changed) != 0)
                changed = line;
            else
                SDL_UnionRect(&changed, &line, &changed);
            m_at = to;
            isShown = true;
        }
        return isShown;
    }

private:
    SDL_Point m_at{};
    bool m_isOver = false;
};

void RunPart(SDL_Window* window) {
    SDL_Surface* surface = SDL_GetWindowSurface(window);
    SDL_FillRect(surface, nullptr, sheet);
    const Sheet target{surface->w, surface->h, static_cast<std::uint32_t*>(surface->pixels), surface->pitch / 4};
    SDL_UpdateWindowSurface(window);
    Pen pen;
    while (!pen.IsOver()) {
        SDL_Rect changed{};
        if (pen.TakeEvents(target, changed)) SDL_UpdateWindowSurfaceRects(window, &changed, 1);
    }
}

void ShowWhole(SDL_Window* window, const Sheet& target) {
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, target.width, target.height, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV,
                    target.pixels);
    glBegin(GL_QUADS);
    for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}}) {
        glTexCoord2i(x, 1 - y);
        glVertex2i(2 * x - 1, 2 * y - 1);
    }
    glEnd();
    SDL_GL_SwapWindow(window);
}

void RunWhole(SDL_Window* window) {
    SDL_GLContext context = SDL_GL_CreateContext(window);
    SDL_GL_SetSwapInterval(0);
    Sheet target;
    SDL_GetWindowSize(window, &target.width, &target.height);
    target.stride = target.width;
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(target.width) * static_cast<std::size_t>(target.height),
                                      sheet);
    target.pixels = pixels.data();
    glEnable(GL_TEXTURE_2D);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, target.width, target.height, 0, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV,
                 pixels.data());
    ShowWhole(window, target);
    Pen pen;
    while (!pen.IsOver()) {
        SDL_Rect changed{};
        if (pen.TakeEvents(target, changed)) ShowWhole(window, target);
    }
    SDL_GL_DeleteContext(context);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view way = argc == 4 ? argv[1] : "";
    const int width = argc == 4 ? std::atoi(argv[2]) : 0;
    const int height = argc == 4 ? std::atoi(argv[3]) : 0;
    if ((way != "part" && way != "whole") || width < 1 || height < 1) {
        std::fprintf(stderr, "annotator: wants \"part\" or \"whole\", a width and a height\n");
        return 2;
    }
    if (SDL_Init(SDL_INIT_VIDEO) != 0) {
        std::fprintf(stderr, "annotator: there is no display: %s\n", SDL_GetError());
        return 2;
    }
    SDL_Window* window = SDL_CreateWindow("annotator", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, width, height,
                                          way == "whole" ? Uint32{SDL_WINDOW_OPENGL} : Uint32{0});
    if (window == nullptr) {
        std::fprintf(stderr, "annotator: no window: %s\n", SDL_GetError());
        return 2;
    }
    if (way == "whole")
        RunWhole(window);
    else
        RunPart(window);
    SDL_DestroyWindow(window);
    SDL_Quit();
    return 0;
}
