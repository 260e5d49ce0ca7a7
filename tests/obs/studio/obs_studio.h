#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/cli/temporary_folder.h"
#include "tests/kel/control/raw_connection.h"
#include "tests/kel/window/virtual_display.h"

namespace chalkpane::obs::testing {

// Waits until it is so, looking again and again; fails the test after minutes. No machine is too slow.
void WaitUntil(const std::string& what, const std::function<bool()>& isSo);

// OBS Studio with the plug-in, in a home of its own, on a display of its own. Its canvas has 1024 x 1024 pixels at 10
// frames a second, and what it records is NUT with blue, green, red and alpha as they are.
class ObsStudio {
public:
    ObsStudio();
    ~ObsStudio();
    ObsStudio(const ObsStudio&) = delete;
    ObsStudio& operator=(const ObsStudio&) = delete;
    ObsStudio(ObsStudio&&) = delete;
    ObsStudio& operator=(ObsStudio&&) = delete;

    // By obs-websocket; what it answers, or null where it refuses.
    nlohmann::json Ask(const std::string& request, const nlohmann::json& data = nlohmann::json::object());
    // Until that many frames more have been rendered.
    void WaitForFrames(int frames);
    // The window that OBS opens to work in a source of this name, once it is there.
    [[nodiscard]] kel::testing::WindowPlace InteractWindow(const std::string& source) const;
    // Asks the window to close, as its frame does, and waits until it has: all that the pointer did has arrived then.
    void CloseInteractWindow(const std::string& source);
    // The source as it is now, in whatever text; another picture is another text.
    [[nodiscard]] std::string Screenshot(const std::string& source);
    // Makes OBS save its scene collection, and returns it.
    [[nodiscard]] nlohmann::json Save();
    // Begins to record, and returns the file once some frames have been written; it goes on growing. Nothing stops it
    // but `BeginAgain`: where a recording stops, OBS 29.0.2 may encode with what is gone, and end.
    [[nodiscard]] std::filesystem::path Record();
    // Kills OBS and begins it again with what it had saved.
    void BeginAgain();
    // Ends it as a console does, and waits. Returns the scene collection that it saved.
    [[nodiscard]] nlohmann::json Close();
    [[nodiscard]] std::string Log() const;

    kel::testing::VirtualDisplay display;

private:
    [[nodiscard]] nlohmann::json Collection() const;
    void Kill();
    void WriteConfiguration() const;
    void Start();
    void Connect();

    cli::testing::TemporaryFolder m_home;
    int m_port = 0;
    pid_t m_program = -1;
    std::unique_ptr<kel::testing::RawConnection> m_socket;
    int m_requests = 0;
    int m_saves = 0;
};

}  // namespace chalkpane::obs::testing
