#include "kel/window/sdl_window.h"

#include <SDL.h>
#include <backends/imgui_impl_opengl2.h>
#include <backends/imgui_impl_sdl.h>
#include <imgui.h>

#include "cli/error.h"
#include "kel/window/panel_style.h"

namespace kel {
namespace {

constexpr int frameMargin = 48;  // pixels: what a desktop's window frame takes

[[noreturn]] void Refuse(const std::string& what) { throw cli::Error("no window: " + what + ": " + SDL_GetError()); }

struct CloseWindow {
    void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
};
struct CloseVideo {
    bool isOpen = false;
    CloseVideo() {
        SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
        SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");  // the first click draws already
        if (SDL_Init(SDL_INIT_VIDEO) != 0) Refuse("there is no display");
        isOpen = true;
    }
    ~CloseVideo() {
        if (isOpen) SDL_Quit();
    }
    CloseVideo(const CloseVideo&) = delete;
    CloseVideo& operator=(const CloseVideo&) = delete;
    CloseVideo(CloseVideo&&) = delete;
    CloseVideo& operator=(CloseVideo&&) = delete;
};

// The context, and the panel's drawing in it.
class PanelContext {
public:
    explicit PanelContext(SDL_Window* window) : m_context(SDL_GL_CreateContext(window)) {
        if (m_context == nullptr) Refuse("OpenGL");
        SDL_GL_SetSwapInterval(0);  // fields have their own time
        ImGui::CreateContext();
        ImGui::GetIO().IniFilename = nullptr;
        StylePanel();
        ImGui_ImplSDL2_InitForOpenGL(window, m_context);
        ImGui_ImplOpenGL2_Init();
    }
    ~PanelContext() {
        ImGui_ImplOpenGL2_Shutdown();
        ImGui_ImplSDL2_Shutdown();
        ImGui::DestroyContext();
        SDL_GL_DeleteContext(m_context);
    }
    PanelContext(const PanelContext&) = delete;
    PanelContext& operator=(const PanelContext&) = delete;
    PanelContext(PanelContext&&) = delete;
    PanelContext& operator=(PanelContext&&) = delete;

private:
    SDL_GLContext m_context;
};

SDL_Window* OpenWindow(const std::string& title) {
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_COMPATIBILITY);
    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
    SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 0);
    constexpr Uint32 flags = SDL_WINDOW_OPENGL | SDL_WINDOW_RESIZABLE | SDL_WINDOW_HIDDEN;
    SDL_Window* window =
        SDL_CreateWindow(title.c_str(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, 640, 480, flags);
    if (window == nullptr) Refuse("it cannot be opened");
    return window;
}

}  // namespace

struct SdlWindow::Parts {
    explicit Parts(const std::string& title) : window(OpenWindow(title)), context(window.get()) {}
    CloseVideo video;
    std::unique_ptr<SDL_Window, CloseWindow> window;
    PanelContext context;
};

SdlWindow::SdlWindow(const std::string& title) : m_parts(std::make_unique<Parts>(title)) {}
SdlWindow::~SdlWindow() = default;

WindowSize SdlWindow::Room() const {
    SDL_Rect bounds{};
    if (SDL_GetDisplayUsableBounds(0, &bounds) != 0) Refuse("there is no display");
    return {bounds.w, bounds.h - frameMargin};
}

WindowSize SdlWindow::Size() const {
    WindowSize size;
    SDL_GetWindowSize(m_parts->window.get(), &size.width, &size.height);
    return size;
}

void SdlWindow::Show(WindowSize size) {
    SDL_Window* window = m_parts->window.get();
    SDL_SetWindowSize(window, size.width, size.height);
    SDL_SetWindowMinimumSize(window, 480, 360);
    SDL_SetWindowPosition(window, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED);
    SDL_ShowWindow(window);
    SDL_RaiseWindow(window);
}

void SdlWindow::SetTitle(const std::string& title) { SDL_SetWindowTitle(m_parts->window.get(), title.c_str()); }

bool SdlWindow::IsFullScreen() const {
    return (SDL_GetWindowFlags(m_parts->window.get()) & SDL_WINDOW_FULLSCREEN_DESKTOP) == SDL_WINDOW_FULLSCREEN_DESKTOP;
}

void SdlWindow::SetFullScreen(bool on) {
    SDL_SetWindowFullscreen(m_parts->window.get(), on ? SDL_WINDOW_FULLSCREEN_DESKTOP : 0);
}

void SdlWindow::BeginFrame() {
    ImGui_ImplOpenGL2_NewFrame();
    ImGui_ImplSDL2_NewFrame();
    ImGui::NewFrame();
}

void SdlWindow::EndFrame() {
    ImGui::Render();
    ImGui_ImplOpenGL2_RenderDrawData(ImGui::GetDrawData());
    SDL_GL_SwapWindow(m_parts->window.get());
}

}  // namespace kel
