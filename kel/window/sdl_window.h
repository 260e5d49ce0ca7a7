#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kel/scene/host.h"
#include "kel/window/panel_pages.h"

struct SDL_Window;
union SDL_Event;

namespace kel {

// A window of the desktop with an OpenGL context of the compatibility profile, current on the thread that made it, and
// a panel drawn in it. Throws Error when no window can be opened here.
class SdlWindow {
public:
    explicit SdlWindow(const std::string& title);  // hidden until Show
    ~SdlWindow();
    SdlWindow(const SdlWindow&) = delete;
    SdlWindow& operator=(const SdlWindow&) = delete;
    SdlWindow(SdlWindow&&) = delete;
    SdlWindow& operator=(SdlWindow&&) = delete;

    // What the desktop has room for, less the window's frame.
    [[nodiscard]] WindowSize Room() const;
    [[nodiscard]] WindowSize Size() const;
    void Show(WindowSize size);
    void SetTitle(const std::string& title);

    [[nodiscard]] bool IsFullScreen() const;
    void SetFullScreen(bool on);

    // For the panel, in the order in which they come.
    void TakeForPanel(const SDL_Event& event);
    // True: presses or releases of the button that the panel has not seen; it sees one in each of its frames.
    [[nodiscard]] bool HasClickWaiting() const;
    // Between them the panel is made. Nothing of it is drawn or shown yet.
    void BeginPanel();
    void EndPanel();
    // Of the panel that was made last.
    [[nodiscard]] std::vector<PanelPage> PanelPages() const;
    // Draws it over what stands in the back buffer, as far as it lies in the part.
    void DrawPanel(const FrameArea& part);
    // True: a page that takes the mouse lies there. In pixels from the upper left corner.
    [[nodiscard]] bool IsOnPage(std::int32_t x, std::int32_t y) const;

    // True: the back buffer keeps its pixels but for Swap, and parts of it can be shown.
    [[nodiscard]] bool ShowsParts() const;
    void ShowPart(const FrameArea& part);  // within the window
    // The same for a part of the scene's picture, without the back buffer (picture_putter.h). False: nothing was done.
    [[nodiscard]] bool PutPicture(const Host& host, const FrameArea& picture, const FrameArea& part);
    void Swap();  // shows all of it; leaves anything behind

    // Returns when there is an event, or when the time has come.
    void WaitForEvent(std::chrono::steady_clock::time_point until);

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};

}  // namespace kel
