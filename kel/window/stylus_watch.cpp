#include "kel/window/stylus_watch.h"

#if KEL_WITH_XINPUT
#include <SDL.h>
#include <X11/extensions/XInput2.h>

#include <algorithm>
#include <array>
#include <bit>
#include <string>
#include <utility>
#include <vector>

#include "kel/window/stylus_device.h"
#endif

namespace kel {
#if KEL_WITH_XINPUT
namespace {

struct CloseDisplay {
    void operator()(Display* display) const { XCloseDisplay(display); }
};
struct FreeDevices {
    void operator()(XIDeviceInfo* devices) const { XIFreeDeviceInfo(devices); }
};

std::string AtomName(Display* display, Atom atom) {
    if (atom == None) return {};
    char* const name = XGetAtomName(display, atom);
    std::string text = name == nullptr ? "" : name;
    if (name != nullptr) XFree(name);
    return text;
}

std::optional<StylusDevice> Describe(Display* display, const XIDeviceInfo& info) {
    std::vector<std::string> labels(static_cast<std::size_t>(std::max(info.num_classes, 0)));
    std::vector<InputAxis> axes;
    for (std::size_t i = 0; i < labels.size(); ++i) {
        const XIAnyClassInfo* const one = info.classes[i];
        if (one->type != XIValuatorClass) continue;
        const auto& axis = *std::bit_cast<const XIValuatorClassInfo*>(one);
        labels[i] = AtomName(display, axis.label);
        axes.push_back({axis.number, labels[i], axis.min, axis.max});
    }
    return DescribeStylus(info.deviceid, info.name, axes);
}

// Those of the pointers that move the display's.
std::vector<StylusDevice> FindPens(Display* display) {
    int count = 0;
    const std::unique_ptr<XIDeviceInfo, FreeDevices> devices(XIQueryDevice(display, XIAllDevices, &count));
    std::vector<StylusDevice> pens;
    for (int i = 0; devices != nullptr && i < count; ++i) {
        const XIDeviceInfo& info = devices.get()[i];
        if (info.use != XISlavePointer) continue;
        if (const auto pen = Describe(display, info)) pens.push_back(*pen);
    }
    return pens;
}

}  // namespace

struct StylusWatch::Connection {
    std::unique_ptr<Display, CloseDisplay> display;
    int extension = 0;
    std::vector<StylusDevice> pens;
    State state;

    // Without a pen nothing of the pointer is asked for, only whether one comes.
    void Select() {
        std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> bits{};
        const auto ask = [&](int event) { bits[static_cast<std::size_t>(event) / 8] |= 1U << (event % 8); };
        ask(XI_HierarchyChanged);
        Ask(XIAllDevices, bits);
        bits = {};
        if (!pens.empty())
            for (const int event : {XI_RawMotion, XI_RawButtonPress}) ask(event);
        Ask(XIAllMasterDevices, bits);
    }

    void Ask(int device, std::span<unsigned char> bits) const {
        XIEventMask mask{device, static_cast<int>(bits.size()), bits.data()};
        XISelectEvents(display.get(), DefaultRootWindow(display.get()), &mask, 1);
        XFlush(display.get());
    }

    void Take(const XIRawEvent& event) {
        const auto pen = std::ranges::find(pens, event.sourceid, &StylusDevice::id);
        if (pen == pens.end()) {
            state = {};
            return;
        }
        const std::span<const unsigned char> mask(event.valuators.mask,
                                                  static_cast<std::size_t>(std::max(event.valuators.mask_len, 0)));
        std::size_t values = 0;
        for (const unsigned char byte : mask) values += static_cast<std::size_t>(std::popcount(byte));
        state.isEraser = pen->isEraser;
        if (pen->pressureAxis < 0) state.pressure = 1;
        if (const auto pressure = PressureIn(*pen, mask, {event.valuators.values, values})) state.pressure = *pressure;
    }

    void TakeNext() {
        XEvent event;
        XNextEvent(display.get(), &event);
        if (event.type != GenericEvent || event.xcookie.extension != extension ||
            XGetEventData(display.get(), &event.xcookie) == False)
            return;
        if (event.xcookie.evtype == XI_HierarchyChanged) {
            pens = FindPens(display.get());
            Select();
        } else {
            Take(*static_cast<const XIRawEvent*>(event.xcookie.data));
        }
        XFreeEventData(display.get(), &event.xcookie);
    }
};

StylusWatch::StylusWatch() {
    const char* const driver = SDL_GetCurrentVideoDriver();
    if (driver == nullptr || std::string_view(driver) != "x11") return;
    auto connection = std::make_unique<Connection>();
    connection->display.reset(XOpenDisplay(nullptr));
    Display* const display = connection->display.get();
    int event = 0;
    int error = 0;
    int major = 2;
    int minor = 1;  // from there on raw events come whoever holds the pointer
    if (display == nullptr ||
        XQueryExtension(display, "XInputExtension", &connection->extension, &event, &error) == False ||
        XIQueryVersion(display, &major, &minor) != Success)
        return;
    connection->pens = FindPens(display);
    connection->Select();
    m_connection = std::move(connection);
}

StylusWatch::State StylusWatch::Look() {
    if (!m_connection) return {};
    while (XPending(m_connection->display.get()) > 0) m_connection->TakeNext();
    return m_connection->state;
}
#else
struct StylusWatch::Connection {};
StylusWatch::StylusWatch() = default;
StylusWatch::State StylusWatch::Look() { return {}; }
#endif

StylusWatch::~StylusWatch() = default;

}  // namespace kel
