#include "tests/kel/window/virtual_display.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>
#include <vector>

namespace kel::testing {
namespace {

constexpr int startTime = 60'000;  // milliseconds

// What the server writes once it listens: its number and an end of line.
std::string ReadLine(int end) {
    std::string line;
    for (;;) {
        pollfd waiting{end, POLLIN, 0};
        char letter = 0;
        if (poll(&waiting, 1, startTime) != 1 || read(end, &letter, 1) != 1)
            throw std::runtime_error("the display does not start");
        if (letter == '\n') return line;
        line += letter;
    }
}

// Its number goes to `end`.
[[noreturn]] void BecomeServer(std::vector<std::string> words, int end) {
    for (const std::string& word : {std::string("-displayfd"), std::to_string(end), std::string("-nolisten"),
                                    std::string("tcp"), std::string("-noreset")})
        words.push_back(word);
    std::vector<char*> line;
    line.reserve(words.size() + 1);
    for (std::string& word : words) line.push_back(word.data());
    line.push_back(nullptr);
    execvp(line[0], line.data());
    _exit(127);
}

}  // namespace

bool VirtualDisplay::IsPossible() { return std::system("command -v Xvfb >/dev/null 2>&1") == 0; }

VirtualDisplay::VirtualDisplay(ScreenSize size, const std::vector<std::string>& server) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
    m_server = fork();
    if (m_server == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);  // however the test ends, no server stays behind
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDERR_FILENO);
        close(ends[0]);
        const std::string screen = std::to_string(size.width) + "x" + std::to_string(size.height) + "x24";
        BecomeServer(server.empty() ? std::vector<std::string>{"Xvfb", "-screen", "0", screen} : server, ends[1]);
    }
    close(ends[1]);
    m_name = ":" + ReadLine(ends[0]);
    close(ends[0]);
    // The window probes the display with windows of its own, and one may vanish between the list of windows and the
    // question for its name. Every answer is looked at, so an error is no reason for the library to end the program.
    XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    m_display = XOpenDisplay(m_name.c_str());
    if (m_display == nullptr) throw std::runtime_error("no connection to " + m_name);
    // As desktops tell all programs how large texts are to be.
    const std::string resources = "Xft.dpi:\t" + std::to_string(size.perInch) + "\n";
    const std::vector<unsigned char> bytes(resources.begin(), resources.end());
    XChangeProperty(m_display, DefaultRootWindow(m_display), XA_RESOURCE_MANAGER, XA_STRING, 8, PropModeReplace,
                    bytes.data(), static_cast<int>(bytes.size()));
    XSync(m_display, False);
}

VirtualDisplay::~VirtualDisplay() {
    if (m_display != nullptr) XCloseDisplay(m_display);
    if (m_server <= 0) return;
    kill(m_server, SIGTERM);
    waitpid(m_server, nullptr, 0);
}

void VirtualDisplay::MovePointer(std::int32_t x, std::int32_t y) {
    XTestFakeMotionEvent(m_display, 0, x, y, CurrentTime);
    XSync(m_display, False);
}

void VirtualDisplay::PressButton(bool down) {
    XTestFakeButtonEvent(m_display, 1, down ? True : False, CurrentTime);
    XSync(m_display, False);
}

void VirtualDisplay::TurnWheel(int notches) {
    const unsigned button = notches > 0 ? 4 : 5;
    for (int i = 0; i < std::abs(notches); ++i)
        for (const Bool down : {True, False}) XTestFakeButtonEvent(m_display, button, down, CurrentTime);
    XSync(m_display, False);
}

void VirtualDisplay::TypeKey(const std::string& name, bool control) {
    std::vector<std::string> held;
    const KeySym symbol = XStringToKeysym(name.c_str());
    if (XkbKeycodeToKeysym(m_display, XKeysymToKeycode(m_display, symbol), 0, 0) != symbol)
        held.emplace_back("Shift_L");
    if (control) held.emplace_back("Control_L");
    TypeChord(held, name);
}

void VirtualDisplay::TypeChord(const std::vector<std::string>& held, const std::string& name) {
    for (const std::string& key : held) HoldKey(key, true);
    for (const bool down : {true, false}) HoldKey(name, down);
    for (auto key = held.rbegin(); key != held.rend(); ++key) HoldKey(*key, false);
    XSync(m_display, False);
}

void VirtualDisplay::HoldKey(const std::string& name, bool down) {
    const KeyCode code = XKeysymToKeycode(m_display, XStringToKeysym(name.c_str()));
    if (code == 0) throw std::runtime_error("no key " + name);
    XTestFakeKeyEvent(m_display, code, down ? True : False, CurrentTime);
    XSync(m_display, False);
}

void VirtualDisplay::TypeText(const std::string& letters) {
    // X calls a letter of Latin 1 by its number.
    for (const char letter : letters) TypeKey(XKeysymToString(static_cast<unsigned char>(letter)));
}

std::optional<WindowPlace> VirtualDisplay::FindWindow(const std::string& titleEnd) const {
    Window root = 0;
    Window parent = 0;
    Window* children = nullptr;
    unsigned count = 0;
    if (XQueryTree(m_display, DefaultRootWindow(m_display), &root, &parent, &children, &count) == 0) return {};
    std::optional<WindowPlace> place;
    for (unsigned i = 0; i < count && !place; ++i) {
        char* title = nullptr;
        XWindowAttributes attributes{};
        if (XFetchName(m_display, children[i], &title) == 0 || title == nullptr) continue;
        const bool isIt = std::string(title).ends_with(titleEnd);
        XFree(title);
        if (isIt && XGetWindowAttributes(m_display, children[i], &attributes) != 0 &&
            attributes.map_state == IsViewable)
            place = WindowPlace{attributes.x, attributes.y, attributes.width, attributes.height, children[i]};
    }
    if (children != nullptr) XFree(children);
    return place;
}

void VirtualDisplay::ResizeWindow(const WindowPlace& window, std::int32_t width, std::int32_t height) {
    XResizeWindow(m_display, window.id, static_cast<unsigned>(width), static_cast<unsigned>(height));
    XSync(m_display, False);
}

void VirtualDisplay::MoveWindow(const WindowPlace& window, std::int32_t x, std::int32_t y) {
    XMoveWindow(m_display, window.id, x, y);
    XSync(m_display, False);
}

picture_io::Picture VirtualDisplay::Screen() const {
    XWindowAttributes root{};
    XGetWindowAttributes(m_display, DefaultRootWindow(m_display), &root);
    XImage* image = XGetImage(m_display, DefaultRootWindow(m_display), 0, 0, static_cast<unsigned>(root.width),
                              static_cast<unsigned>(root.height), AllPlanes, ZPixmap);
    if (image == nullptr) throw std::runtime_error("no picture of the screen");
    picture_io::Picture screen(root.width, root.height);
    for (int y = 0; y < root.height; ++y)
        for (int x = 0; x < root.width; ++x) {
            const unsigned long pixel = XGetPixel(image, x, y);
            const auto byte = [&](unsigned shift) { return static_cast<std::uint8_t>(pixel >> shift & 0xFFU); };
            screen.Set(x, y, {byte(16), byte(8), byte(0), 255});
        }
    XDestroyImage(image);
    return screen;
}

}  // namespace kel::testing
