#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/cli/temporary_folder.h"
#include "tests/kel/window/virtual_display.h"

namespace kel::testing {

// A touch screen, and a tablet with a pen that has two ends, as drivers of a real Xorg show them to programs.
class InputDevices {
public:
    [[nodiscard]] static bool IsPossible();  // there is an Xorg with the drivers of a screen and devices that are none

    explicit InputDevices(ScreenSize screen = {});
    ~InputDevices();
    InputDevices(const InputDevices&) = delete;
    InputDevices& operator=(const InputDevices&) = delete;
    InputDevices(InputDevices&&) = delete;
    InputDevices& operator=(InputDevices&&) = delete;

    // The server that has them, for a VirtualDisplay of the same size.
    [[nodiscard]] std::vector<std::string> Server() const;
    void Connect();  // once it runs

    enum class Finger : std::uint32_t { Down = 18, Moves = 19, Up = 20 };  // as X counts its events
    enum class PenEnd : std::uint8_t { Tip, Eraser };
    // In pixels of the screen. Each returns when the server has taken it.
    void Touch(std::uint32_t finger, Finger does, std::int32_t x, std::int32_t y);
    void MovePen(PenEnd end, std::int32_t x, std::int32_t y, double pressure);  // 0.0 .. 1.0
    void PressPen(PenEnd end, bool down);

private:
    struct Device {
        std::string name;
        std::string type;
        int connection = -1;
    };
    static void Send(const Device& device, const void* event, std::size_t size);
    template <typename Event>
    static void SendAndWait(const Device& device, const Event& event);
    [[nodiscard]] Device& Of(PenEnd end) { return end == PenEnd::Tip ? m_pen : m_eraser; }

    ScreenSize m_screen;
    cli::testing::TemporaryFolder m_folder;
    Device m_touch{"touch", "Touch"};
    Device m_pen{"pen", "PointerAbsolute"};
    Device m_eraser{"pen eraser", "PointerAbsolute"};
};

}  // namespace kel::testing
