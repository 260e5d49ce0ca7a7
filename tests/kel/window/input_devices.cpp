#include "tests/kel/window/input_devices.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xorg/xf86-input-inputtest-protocol.h>

#include <cstdlib>
#include <stdexcept>

namespace kel::testing {
namespace {

constexpr double axisEnd = 65535;  // of the places on both
constexpr double fullPressure = 1000;
constexpr std::size_t pressureAxis = 4;

std::string DeviceText(const std::string& name, const std::string& type, const std::filesystem::path& folder) {
    return "Section \"InputDevice\"\n  Identifier \"" + name +
           "\"\n  Driver \"inputtest\"\n  Option \"SocketPath\" \"" + (folder / name).string() +
           "\"\n  Option \"DeviceType\" \"" + type +
           "\"\n  Option \"TouchCount\" \"5\"\n  Option \"PointerHasPressure\" \"true\"\nEndSection\n";
}

std::string ConfigurationText(ScreenSize screen, const std::string& devices) {
    const std::string width = std::to_string(screen.width);
    const std::string height = std::to_string(screen.height);
    const auto after = [](std::int32_t pixels, std::int32_t more) { return " " + std::to_string(pixels + more); };
    std::string mode = "\"screen\" 130 " + width + after(screen.width, 100) + after(screen.width, 200) +
                       after(screen.width, 400) + " " + height;
    for (const std::int32_t line : {3, 9, 38}) mode += after(screen.height, line);
    return "Section \"ServerFlags\"\n  Option \"AutoAddDevices\" \"false\"\nEndSection\n"
           "Section \"Device\"\n  Identifier \"card\"\n  Driver \"dummy\"\n  VideoRam 65536\nEndSection\n"
           "Section \"Monitor\"\n  Identifier \"monitor\"\n  HorizSync 1-500\n  VertRefresh 1-500\n  Modeline " +
           mode +
           "\nEndSection\n"
           "Section \"Screen\"\n  Identifier \"screen\"\n  Device \"card\"\n  Monitor \"monitor\"\n  DefaultDepth 24\n"
           "  SubSection \"Display\"\n    Modes \"screen\"\n    Virtual " +
           width + " " + height + "\n  EndSubSection\nEndSection\n" + devices;
}

// The middle of the pixel.
double Along(std::int32_t at, std::int32_t size) { return (at + 0.5) * (axisEnd + 1) / size; }

void SetValue(xf86ITValuatorData& values, std::size_t axis, double value) {
    values.mask[axis / 8] = static_cast<std::uint8_t>(values.mask[axis / 8] | 1U << axis % 8);
    values.valuators[axis] = value;
}

template <typename Event>
Event Begun(xf86ITEventType type) {
    Event event{};
    event.header = {sizeof event, type};
    return event;
}

template <typename Response>
void Receive(int connection) {
    Response response{};
    if (recv(connection, &response, sizeof response, MSG_WAITALL) != sizeof response)
        throw std::runtime_error("the input device does not answer");
}

int ConnectTo(const std::filesystem::path& place) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    place.string().copy(static_cast<char*>(address.sun_path), sizeof address.sun_path - 1);
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error("no input device at " + place.string());
    return connection;
}

}  // namespace

bool InputDevices::IsPossible() {
    return std::system("command -v Xorg >/dev/null 2>&1") == 0 &&
           std::filesystem::exists("/usr/lib/xorg/modules/drivers/dummy_drv.so") &&
           std::filesystem::exists("/usr/lib/xorg/modules/input/inputtest_drv.so");
}

InputDevices::InputDevices(ScreenSize screen) : m_screen(screen) {
    std::string devices;
    std::string layout = "Section \"ServerLayout\"\n  Identifier \"all\"\n  Screen \"screen\"\n";
    for (const Device& device : {m_touch, m_pen, m_eraser}) {
        devices += DeviceText(device.name, device.type, m_folder.Path());
        layout += "  InputDevice \"" + device.name + "\" \"SendCoreEvents\"\n";
    }
    // Without a mouse and a keyboard the server looks for those of the machine.
    for (const auto& [name, type] : {std::pair("mouse", "Pointer"), std::pair("keys", "Keyboard")}) {
        devices += DeviceText(name, type, m_folder.Path());
        layout +=
            std::string("  InputDevice \"") + name + "\" \"Core" + (type[0] == 'P' ? "Pointer" : "Keyboard") + "\"\n";
    }
    cli::testing::WriteText(m_folder / "xorg.conf", ConfigurationText(screen, devices + layout + "EndSection\n"));
}

InputDevices::~InputDevices() {
    for (const Device* device : {&m_touch, &m_pen, &m_eraser})
        if (device->connection >= 0) close(device->connection);
}

std::vector<std::string> InputDevices::Server() const {
    // On a seat of its own it leaves the machine's console alone.
    return {
        "Xorg", "-seat", "none", "-config", (m_folder / "xorg.conf").string(), "-logfile", (m_folder / "log").string()};
}

void InputDevices::Connect() {
    for (Device* device : {&m_touch, &m_pen, &m_eraser}) {
        device->connection = ConnectTo(m_folder / device->name);
        auto version = Begun<xf86ITEventClientVersion>(XF86IT_EVENT_CLIENT_VERSION);
        version.major = XF86IT_PROTOCOL_VERSION_MAJOR;
        version.minor = XF86IT_PROTOCOL_VERSION_MINOR;
        Send(*device, &version, sizeof version);
        Receive<xf86ITResponseServerVersion>(device->connection);
    }
}

void InputDevices::Send(const Device& device, const void* event, std::size_t size) {
    if (send(device.connection, event, size, MSG_NOSIGNAL) != static_cast<ssize_t>(size))
        throw std::runtime_error("the input device " + device.name + " is gone");
}

template <typename Event>
void InputDevices::SendAndWait(const Device& device, const Event& event) {
    Send(device, &event, sizeof event);
    const auto wait = Begun<xf86ITEventWaitForSync>(XF86IT_EVENT_WAIT_FOR_SYNC);
    Send(device, &wait, sizeof wait);
    Receive<xf86ITResponseSyncFinished>(device.connection);
}

void InputDevices::Touch(std::uint32_t finger, Finger does, std::int32_t x, std::int32_t y) {
    auto event = Begun<xf86ITEventTouch>(XF86IT_EVENT_TOUCH);
    event.touchid = finger;
    event.touch_type = static_cast<std::uint32_t>(does);
    SetValue(event.valuators, 0, Along(x, m_screen.width));
    SetValue(event.valuators, 1, Along(y, m_screen.height));
    SendAndWait(m_touch, event);
}

void InputDevices::MovePen(PenEnd end, std::int32_t x, std::int32_t y, double pressure) {
    auto event = Begun<xf86ITEventMotion>(XF86IT_EVENT_MOTION);
    event.is_absolute = 1;
    SetValue(event.valuators, 0, Along(x, m_screen.width));
    SetValue(event.valuators, 1, Along(y, m_screen.height));
    SetValue(event.valuators, pressureAxis, pressure * fullPressure);
    SendAndWait(Of(end), event);
}

void InputDevices::PressPen(PenEnd end, bool down) {
    auto event = Begun<xf86ITEventButton>(XF86IT_EVENT_BUTTON);
    event.button = 1;
    event.is_press = down ? 1 : 0;
    SendAndWait(Of(end), event);
}

}  // namespace kel::testing
