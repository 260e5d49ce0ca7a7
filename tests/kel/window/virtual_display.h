#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "picture_io/picture.h"

struct _XDisplay;

namespace kel::testing {

struct WindowPlace {
    std::int32_t x = 0;  // pixels of the screen
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    unsigned long id = 0;  // as X knows it
};

struct ScreenSize {
    std::int32_t width = 1600;  // pixels
    std::int32_t height = 1000;
    std::int32_t perInch = 96;  // pixels
};

// A display of its own without a screen anybody sees, with a pointer and a keyboard.
class VirtualDisplay {
public:
    [[nodiscard]] static bool IsPossible();  // there is an Xvfb

    // server: what shows it, with words of its own; empty: Xvfb
    explicit VirtualDisplay(ScreenSize size = {}, const std::vector<std::string>& server = {});
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;
    VirtualDisplay(VirtualDisplay&&) = delete;
    VirtualDisplay& operator=(VirtualDisplay&&) = delete;

    [[nodiscard]] const std::string& Name() const { return m_name; }  // ":3"

    void MovePointer(std::int32_t x, std::int32_t y);
    void PressButton(bool down);
    void TurnWheel(int notches);  // above 0: away from the hand
    // A key by its name in X, such as "r", "bracketright", "question"; with the modifiers it takes.
    void TypeKey(const std::string& name, bool control = false);
    // With others held down, such as "Alt_L".
    void TypeChord(const std::vector<std::string>& held, const std::string& name);
    void HoldKey(const std::string& name, bool down);
    void TypeText(const std::string& letters);

    // The window whose title ends so; nothing while none is on the screen.
    [[nodiscard]] std::optional<WindowPlace> FindWindow(const std::string& titleEnd) const;
    // As a hand does that pulls at its corner.
    void ResizeWindow(const WindowPlace& window, std::int32_t width, std::int32_t height);
    void MoveWindow(const WindowPlace& window, std::int32_t x, std::int32_t y);
    [[nodiscard]] picture_io::Picture Screen() const;

private:
    pid_t m_server = -1;
    std::string m_name;
    _XDisplay* m_display = nullptr;
};

}  // namespace kel::testing
