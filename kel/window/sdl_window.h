#pragma once

#include <memory>
#include <string>

#include "kel/scene/host.h"

struct SDL_Window;

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

    // Between them the panel's frame is made; the second draws it over the window's picture and shows both.
    void BeginFrame();
    void EndFrame();

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};

}  // namespace kel
