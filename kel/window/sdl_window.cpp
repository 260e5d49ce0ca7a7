#include "kel/window/sdl_window.h"

#include <SDL.h>
#include <backends/imgui_impl_opengl2.h>
#include <backends/imgui_impl_sdl.h>
#include <imgui.h>
#include <imgui_internal.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <thread>

#include "cli/error.h"
#include "kel/window/display_refusals.h"
#include "kel/window/display_scale.h"
#include "kel/window/full_screen.h"
#include "kel/window/panel_mouse.h"
#include "kel/window/panel_style.h"
#include "kel/window/part_presenter.h"
#include "kel/window/picture_putter.h"

namespace kel {
namespace {

constexpr int frameMargin = 48;  // pixels: what a desktop's window frame takes

[[noreturn]] void Refuse(const std::string& what) { throw cli::Error("no window: " + what + ": " + SDL_GetError()); }

struct CloseWindow {
    void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
};

// Where there is no display, SDL takes a driver that shows nothing to anybody: a program that waits for ever for
// events. Whoever wants that names it.
bool HasDisplay() {
    constexpr std::array variables{"DISPLAY", "WAYLAND_DISPLAY", "SDL_VIDEODRIVER"};
    return std::ranges::any_of(variables, [](const char* name) { return SDL_getenv(name) != nullptr; });
}
bool ShowsNothingUnasked() {
    constexpr std::array<std::string_view, 3> unseen{"offscreen", "dummy", "evdev"};
    const std::string_view driver = SDL_GetCurrentVideoDriver();
    const char* asked = SDL_getenv("SDL_VIDEODRIVER");
    const bool isAskedFor = asked != nullptr && std::string_view(asked).find(driver) != std::string_view::npos;
    return !isAskedFor && std::ranges::find(unseen, driver) != unseen.end();
}

[[noreturn]] void RefuseWithoutDisplay() {
    throw cli::Error("no window: there is no display; DISPLAY and WAYLAND_DISPLAY say where one is");
}

class SdlVideo {
public:
    SdlVideo() {
        SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
        SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");  // the first click draws already
        SDL_SetHint(SDL_HINT_TOUCH_MOUSE_EVENTS, "0");        // fingers come as such (touch_pointer.h)
        if (!HasDisplay()) RefuseWithoutDisplay();
        PassOverRefusals();  // SDL puts back in its end what it finds now, and hears then of what was refused last
        if (SDL_Init(SDL_INIT_VIDEO) != 0) Refuse("there is no display");
        if (ShowsNothingUnasked()) {
            SDL_Quit();
            RefuseWithoutDisplay();
        }
        PassOverRefusals();
    }
    ~SdlVideo() { SDL_Quit(); }
    SdlVideo(const SdlVideo&) = delete;
    SdlVideo& operator=(const SdlVideo&) = delete;
    SdlVideo(SdlVideo&&) = delete;
    SdlVideo& operator=(SdlVideo&&) = delete;
};

// The context, and the panel's drawing in it.
class PanelContext {
public:
    explicit PanelContext(SDL_Window* window) : m_context(SDL_GL_CreateContext(window)) {
        if (m_context == nullptr) Refuse("OpenGL");
        SDL_GL_SetSwapInterval(0);  // fields have their own time
        ImGui::CreateContext();
        ImGui::GetIO().IniFilename = nullptr;
        StylePanel(DisplayScale(window));
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
    explicit Parts(const std::string& title)
        : window(OpenWindow(title)), context(window.get()), presenter(window.get()), putter(window.get()) {}
    SdlVideo video;
    std::unique_ptr<SDL_Window, CloseWindow> window;
    PanelContext context;
    PartPresenter presenter;
    PicturePutter putter;
    PanelMouse mouse;
    FullScreen fullScreen;
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

bool SdlWindow::IsFullScreen() const { return m_parts->fullScreen.IsOn(m_parts->window.get()); }

void SdlWindow::SetFullScreen(bool on) { m_parts->fullScreen.Set(m_parts->window.get(), on); }

void SdlWindow::TakeForPanel(const SDL_Event& event) {
    // ImGui would hold the mouse while a finger is down: the display then takes the finger for the mouse, and never
    // tells when it is up. What it does comes from PanelMouse alone.
    const bool isFinger = event.type == SDL_MOUSEBUTTONDOWN && event.button.which == SDL_TOUCH_MOUSEID;
    if (!isFinger) ImGui_ImplSDL2_ProcessEvent(&event);
    m_parts->mouse.Take(event);
}

bool SdlWindow::HasClickWaiting() const { return m_parts->mouse.HasWaiting(); }

void SdlWindow::BeginPanel() {
    ImGui_ImplOpenGL2_NewFrame();
    ImGui_ImplSDL2_NewFrame();
    if (const auto look = m_parts->mouse.Next()) {
        ImGuiIO& io = ImGui::GetIO();
        io.MousePos = {static_cast<float>(look->at.x), static_cast<float>(look->at.y)};
        io.MouseDown[0] = look->isDown;
    }
    ImGui::NewFrame();
}

void SdlWindow::EndPanel() { ImGui::Render(); }

std::vector<PanelPage> SdlWindow::PanelPages() const {
    const ImDrawData* data = ImGui::GetDrawData();
    return data == nullptr ? std::vector<PanelPage>() : PagesOf(*data, Size());
}

void SdlWindow::DrawPanel(const FrameArea& part) {
    ImDrawData* data = ImGui::GetDrawData();
    if (data == nullptr) return;
    const WindowSize size = Size();
    const auto bottom = static_cast<float>(size.height);
    // Made for a window of another size it keeps its distance from the upper left corner, as `PanelPages` says.
    data->DisplaySize = {static_cast<float>(size.width), bottom};
    const ImVec4 limit{static_cast<float>(part.x), bottom - static_cast<float>(part.y + part.height),
                       static_cast<float>(part.x + part.width), bottom - static_cast<float>(part.y)};
    std::vector<ImVec4> before;  // what is drawn now may be drawn again within another limit
    for (int i = 0; i < data->CmdListsCount; ++i)
        for (ImDrawCmd& command : data->CmdLists[i]->CmdBuffer) {
            before.push_back(command.ClipRect);
            command.ClipRect = {std::max(command.ClipRect.x, limit.x), std::max(command.ClipRect.y, limit.y),
                                std::min(command.ClipRect.z, limit.z), std::min(command.ClipRect.w, limit.w)};
        }
    ImGui_ImplOpenGL2_RenderDrawData(data);
    std::size_t next = 0;
    for (int i = 0; i < data->CmdListsCount; ++i)
        for (ImDrawCmd& command : data->CmdLists[i]->CmdBuffer) command.ClipRect = before[next++];
}

bool SdlWindow::IsOnPage(std::int32_t x, std::int32_t y) const {
    const ImVec2 at{static_cast<float>(x), static_cast<float>(y)};
    const auto takes = [&](const ImGuiWindow* window) {
        const bool isSeen = window->Active && !window->Hidden && (window->Flags & ImGuiWindowFlags_NoMouseInputs) == 0;
        return isSeen && window->Rect().Contains(at);
    };
    const auto& windows = ImGui::GetCurrentContext()->Windows;
    return std::any_of(windows.begin(), windows.end(), takes);
}

bool SdlWindow::ShowsParts() const { return m_parts->presenter.IsPossible(); }

void SdlWindow::ShowPart(const FrameArea& part) { m_parts->presenter.Show(part); }

bool SdlWindow::PutPicture(const Host& host, const FrameArea& picture, const FrameArea& part) {
    return m_parts->putter.Put(host, picture, part, Size());
}

void SdlWindow::Swap() { SDL_GL_SwapWindow(m_parts->window.get()); }

void SdlWindow::WaitForEvent(std::chrono::steady_clock::time_point until) {
    using std::chrono::milliseconds;
    const auto left = until - std::chrono::steady_clock::now();
    if (left <= left.zero()) return;
    const auto whole = std::chrono::duration_cast<milliseconds>(left);
    // The last part of a millisecond is slept, so that nothing comes late for being rounded up.
    if (whole.count() > 0 && SDL_WaitEventTimeout(nullptr, static_cast<int>(whole.count())) != 0) return;
    if (SDL_HasEvents(SDL_FIRSTEVENT, SDL_LASTEVENT) == SDL_FALSE) std::this_thread::sleep_until(until);
}

}  // namespace kel
