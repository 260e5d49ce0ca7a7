#include "kel/window/clean_output.h"

#include <SDL.h>

#include "cli/error.h"
#include "kel/scene/gl.h"
#include "kel/window/part_presenter.h"
#include "kel/window/window_painter.h"

namespace kel {
namespace {

struct CloseWindow {
    void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
};

// The window's own place in the context, as long as it lives.
class Drawing {
public:
    explicit Drawing(SDL_Window* window) : m_before(SDL_GL_GetCurrentWindow()), m_context(SDL_GL_GetCurrentContext()) {
        SDL_GL_MakeCurrent(window, m_context);
    }
    ~Drawing() { SDL_GL_MakeCurrent(m_before, m_context); }
    Drawing(const Drawing&) = delete;
    Drawing& operator=(const Drawing&) = delete;
    Drawing(Drawing&&) = delete;
    Drawing& operator=(Drawing&&) = delete;

private:
    SDL_Window* m_before;
    SDL_GLContext m_context;
};

int DisplayIndex(const CleanPlace& place) {
    const int count = SDL_GetNumVideoDisplays();
    if (place.display && (*place.display < 1 || *place.display > count))
        throw cli::Error(place.option + ": there is no display " + std::to_string(*place.display) + "; there " +
                         (count == 1 ? "is 1" : "are " + std::to_string(count)));
    return place.display ? *place.display - 1 : count >= place.usual ? place.usual - 1 : 0;
}

SDL_Window* OpenWindow(const CleanPlace& wanted, WindowSize scene) {
    const int index = DisplayIndex(wanted);
    const bool fills = wanted.display || index > 0;
    const int place = static_cast<int>(SDL_WINDOWPOS_CENTERED_DISPLAY(static_cast<unsigned>(index)));
    const Uint32 flags = SDL_WINDOW_OPENGL | (fills ? SDL_WINDOW_FULLSCREEN_DESKTOP : SDL_WINDOW_RESIZABLE);
    SDL_Window* window = SDL_CreateWindow(wanted.title.c_str(), place, place, scene.width, scene.height, flags);
    if (window == nullptr) throw cli::Error(std::string("no clean window can be opened: ") + SDL_GetError());
    return window;
}

}  // namespace

struct CleanOutput::Screen {
    std::unique_ptr<SDL_Window, CloseWindow> window;
    std::unique_ptr<PartPresenter> presenter;
    WindowSize shown;             // the window's size when all of it was shown last
    SDL_Window* first = nullptr;  // the one that is drawn in
    Uint8 held = 0;               // the button that was pressed there and is not up again; 0: none
    bool isStale = true;          // all is to be shown anew
    bool isClosed = false;

    [[nodiscard]] WindowSize Size() const {
        WindowSize size;
        SDL_GetWindowSize(window.get(), &size.width, &size.height);
        return size;
    }
    void ShowAll(const Draw& draw, const FrameArea& picture) {
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glDisable(GL_SCISSOR_TEST);
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        draw(picture, picture);
    }
};

CleanOutput::CleanOutput(const CleanPlace& place, WindowSize scene) : m_screen(std::make_unique<Screen>()) {
    m_screen->first = SDL_GL_GetCurrentWindow();
    m_screen->window.reset(OpenWindow(place, scene));
    const Drawing drawing(m_screen->window.get());
    SDL_GL_SetSwapInterval(0);
    m_screen->presenter = std::make_unique<PartPresenter>(m_screen->window.get());
}

CleanOutput::~CleanOutput() = default;

void CleanOutput::ShowAnew() { m_screen->isStale = true; }

bool CleanOutput::IsClosed() const { return m_screen->isClosed; }

void CleanOutput::Show(WindowSize scene, const FrameArea& changed, const Draw& draw) {
    const WindowSize size = m_screen->Size();
    const bool isOtherSize = size.width != m_screen->shown.width || size.height != m_screen->shown.height;
    const bool isWhole = m_screen->isStale || isOtherSize || !m_screen->presenter->IsPossible();
    if (!isWhole && changed.IsEmpty()) return;
    if (changed.IsEmpty() && !m_screen->isStale && !isOtherSize) return;
    const PictureArea fit = FitPicture(scene, size);
    const FrameArea picture{fit.x, size.height - fit.y - fit.height, fit.width, fit.height};
    const Drawing drawing(m_screen->window.get());
    if (!isWhole) {
        const FrameArea part = ShownPart(changed, scene, picture);
        if (part.IsEmpty()) return;
        draw(picture, part);
        return m_screen->presenter->Show(part);
    }
    m_screen->ShowAll(draw, picture);
    SDL_GL_SwapWindow(m_screen->window.get());
    // What is left in the back buffer is anything.
    if (m_screen->presenter->IsPossible()) m_screen->ShowAll(draw, picture);
    m_screen->shown = size;
    m_screen->isStale = false;
}

void CleanOutput::HandOver(std::uint32_t& windowId, std::int32_t& x, std::int32_t& y) const {
    std::int32_t left = 0;
    std::int32_t top = 0;
    SDL_GetWindowPosition(m_screen->window.get(), &left, &top);
    x += left;
    y += top;
    SDL_GetWindowPosition(m_screen->first, &left, &top);
    x -= left;
    y -= top;
    windowId = SDL_GetWindowID(m_screen->first);
}

bool CleanOutput::TakeEvent(SDL_Event& event) {
    const Uint32 id = SDL_GetWindowID(m_screen->window.get());
    switch (event.type) {
        case SDL_WINDOWEVENT:
            if (event.window.windowID != id) return false;
            if (event.window.event == SDL_WINDOWEVENT_EXPOSED) m_screen->isStale = true;
            if (event.window.event == SDL_WINDOWEVENT_CLOSE) m_screen->isClosed = true;
            return true;
        case SDL_MOUSEMOTION:
            if (event.motion.windowID != id) return false;
            if (m_screen->held == 0) return true;
            HandOver(event.motion.windowID, event.motion.x, event.motion.y);
            return false;
        case SDL_MOUSEBUTTONDOWN:
            if (event.button.windowID == id) return true;
            if (m_screen->held == 0) m_screen->held = event.button.button;
            return false;
        case SDL_MOUSEBUTTONUP: {
            const bool isHeld = m_screen->held == event.button.button;
            if (isHeld) m_screen->held = 0;
            if (event.button.windowID != id) return false;
            if (isHeld) HandOver(event.button.windowID, event.button.x, event.button.y);
            return !isHeld;
        }
        case SDL_MOUSEWHEEL:
            return event.wheel.windowID == id;
        case SDL_FINGERDOWN:
        case SDL_FINGERMOTION:
        case SDL_FINGERUP:
            return event.tfinger.windowID == id;
        default:
            return false;
    }
}

}  // namespace kel
