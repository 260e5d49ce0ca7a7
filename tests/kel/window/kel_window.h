#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "tests/cli/temporary_folder.h"
#include "tests/kel/window/virtual_display.h"

namespace kel::testing {

// Waits until it is so, looking again and again; fails the test after minutes. No machine is too slow.
void WaitUntil(const std::string& what, const std::function<bool()>& isSo);

// `kel window` in a folder of its own, on a display of its own.
class KelWindow {
public:
    // Starts it once the folder has been filled.
    void Start(const std::vector<std::string>& arguments);
    explicit KelWindow(ScreenSize screen = {}, const std::vector<std::string>& server = {}) : display(screen, server) {}
    ~KelWindow();
    KelWindow(const KelWindow&) = delete;
    KelWindow& operator=(const KelWindow&) = delete;
    KelWindow(KelWindow&&) = delete;
    KelWindow& operator=(KelWindow&&) = delete;

    void Signal(int number) const;
    int WaitForEnd();  // the exit code; 128 and the signal's number when one ended it
    [[nodiscard]] bool IsRunning();

    // The recording, as it is now.
    [[nodiscard]] nlohmann::json Recorded(const std::string& name) const;
    // The field of the last event that has this key; -1: none has.
    [[nodiscard]] std::int64_t FieldOf(const std::string& recording, const std::string& key) const;
    // What stands on the overlay of the played recording.
    [[nodiscard]] picture_io::Picture PlayedOverlay(const std::string& recording) const;

    cli::testing::TemporaryFolder folder;
    VirtualDisplay display;

private:
    pid_t m_program = -1;
};

}  // namespace kel::testing
