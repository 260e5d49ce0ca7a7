#include "kel/window/progress_window.h"

#include <SDL.h>
#include <backends/imgui_impl_sdl.h>
#include <imgui.h>

#include <chrono>
#include <future>
#include <optional>

#include "cli/error.h"
#include "kel/scene/gl.h"
#include "kel/window/sdl_window.h"

namespace kel {
namespace {

using Clock = std::chrono::steady_clock;

constexpr WindowSize windowSize{480, 132};

std::string Estimate(const WorkProgress& progress, Clock::time_point start) {
    const std::int64_t done = progress.done;
    const std::int64_t all = progress.all;
    if (done == 0 || all == 0) return {};
    const double passed = std::chrono::duration<double>(Clock::now() - start).count();
    const double left = passed * static_cast<double>(all - done) / static_cast<double>(done);
    return std::to_string(done) + " of " + std::to_string(all) + ", " + std::to_string(static_cast<int>(left + 1)) +
           " s left";
}

class ProgressWindow {
public:
    explicit ProgressWindow(std::string what) : m_what(std::move(what)) {
        m_window.SetTitle(m_what + " - kel");
        m_window.Show(windowSize);
    }

    void Show(WorkProgress& progress) {
        TakeEvents(progress);
        m_window.BeginPanel();
        ShowPage(progress);
        m_window.EndPanel();
        const WindowSize size = m_window.Size();
        glViewport(0, 0, size.width, size.height);
        m_window.DrawPanel({0, 0, size.width, size.height});
        m_window.Swap();
        m_window.WaitForEvent(Clock::now() + std::chrono::milliseconds(100));
    }

private:
    static void TakeEvents(WorkProgress& progress) {
        SDL_Event event;
        while (SDL_PollEvent(&event) != 0) {
            ImGui_ImplSDL2_ProcessEvent(&event);
            const bool isEscape = event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_ESCAPE;
            if (event.type == SDL_QUIT || isEscape) progress.isStopped = true;
        }
    }

    void ShowPage(WorkProgress& progress) const {
        const ImVec2 room = ImGui::GetIO().DisplaySize;
        ImGui::SetNextWindowPos({0, 0});
        ImGui::SetNextWindowSize(room);
        ImGui::Begin("progress", nullptr, ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove);
        ImGui::TextUnformatted(progress.isStopped ? "Stopping" : m_what.c_str());
        const std::int64_t all = progress.all;
        const float share = all == 0 ? 0.0F : static_cast<float>(progress.done) / static_cast<float>(all);
        ImGui::ProgressBar(share, {-1, 0});
        ImGui::AlignTextToFramePadding();
        ImGui::TextDisabled("%s", Estimate(progress, m_start).c_str());
        constexpr float buttonWidth = 110;
        ImGui::SameLine(ImGui::GetWindowWidth() - buttonWidth - ImGui::GetStyle().WindowPadding.x);
        if (ImGui::Button("Stop", {buttonWidth, 0})) progress.isStopped = true;
        ImGui::End();
    }

    std::string m_what;
    SdlWindow m_window{"kel"};
    Clock::time_point m_start = Clock::now();
};

}  // namespace

void RunWithProgressWindow(const std::string& what, const std::function<void(WorkProgress&)>& work) {
    WorkProgress progress;
    std::optional<ProgressWindow> window;
    try {
        window.emplace(what);
    } catch (const cli::Error&) {
        return work(progress);
    }
    // Begins once the window is there: opening it sets the locale for a moment, in which numbers are read otherwise.
    std::future<void> running = std::async(std::launch::async, [&] { work(progress); });
    while (running.wait_for(std::chrono::seconds(0)) != std::future_status::ready) window->Show(progress);
    window.reset();
    running.get();
}

}  // namespace kel
