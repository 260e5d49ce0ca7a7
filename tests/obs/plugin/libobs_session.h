#pragma once

#include <obs.h>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/kel/window/virtual_display.h"

namespace chalkpane::obs::testing {

// Waits until it is so, looking again and again; fails the test after minutes. No machine is too slow.
void WaitUntil(const std::string& what, const std::function<bool()>& isSo);

// What OBS's log was told since this was last asked.
[[nodiscard]] std::string TakeLog();

using Source = std::unique_ptr<obs_source_t, void (*)(obs_source_t*)>;
using Settings = std::unique_ptr<obs_data_t, void (*)(obs_data_t*)>;
[[nodiscard]] Settings NewSettings();

// Pixels as they were drawn: red, green, blue, alpha, the top row first.
struct DrawnPicture {
    std::uint32_t width = 0;
    std::vector<std::uint8_t> bytes;

    [[nodiscard]] std::array<int, 4> At(std::uint32_t x, std::uint32_t y) const;
};

enum class Graphics { OpenGl, Missing };

// OBS's library with the plug-in in it, as a frontend has it, and with a source "plain_color" in the color that its
// settings name "color", which covers all of its 256 x 256 pixels.
class LibobsSession {
public:
    explicit LibobsSession(Graphics graphics);
    ~LibobsSession();  // fails the test when something was left behind
    LibobsSession(const LibobsSession&) = delete;
    LibobsSession& operator=(const LibobsSession&) = delete;
    LibobsSession(LibobsSession&&) = delete;
    LibobsSession& operator=(LibobsSession&&) = delete;

    // Shown from the beginning, so that its texture follows.
    [[nodiscard]] Source Create(const char* id, const char* name, obs_data_t* settings = nullptr);
    // Renders the source as OBS does for its outputs, over nothing or over a color.
    [[nodiscard]] DrawnPicture Draw(obs_source_t* source, std::uint32_t width, std::uint32_t height,
                                    const std::array<float, 4>& over = {}) const;
    // One pixel of it, rendered as OBS does for what has more than a screen's brightness.
    [[nodiscard]] std::array<double, 4> DrawLinear(obs_source_t* source, std::uint32_t width, std::uint32_t height,
                                                   std::uint32_t x, std::uint32_t y) const;
    void WaitForFrames(int frames) const;

private:
    kel::testing::VirtualDisplay m_display;
    void* m_connection = nullptr;
};

}  // namespace chalkpane::obs::testing
