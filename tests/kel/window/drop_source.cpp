#include "tests/kel/window/drop_source.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <vector>

#include "tests/kel/window/kel_window.h"

namespace kel::testing {
namespace {

struct CloseDisplay {
    void operator()(Display* display) const { XCloseDisplay(display); }
};

// The program that a file is dragged from.
class DropSource {
public:
    DropSource(const std::string& display, Window target, const std::filesystem::path& file)
        : m_display(XOpenDisplay(display.c_str())), m_target(target), m_text("file://" + file.string() + "\r\n") {
        if (m_display == nullptr) throw std::runtime_error("no connection to " + display);
        m_window = XCreateSimpleWindow(Connection(), DefaultRootWindow(Connection()), 0, 0, 1, 1, 0, 0, 0);
        XSetSelectionOwner(Connection(), Named("XdndSelection"), m_window, CurrentTime);
    }

    void Send(const char* message, const std::array<long, 4>& words) const {
        XClientMessageEvent event{};
        event.type = ClientMessage;
        event.window = m_target;
        event.message_type = Named(message);
        event.format = 32;
        event.data.l[0] = static_cast<long>(m_window);
        for (std::size_t i = 0; i < words.size(); ++i) event.data.l[i + 1] = words[i];
        XEvent sent{};
        sent.xclient = event;
        XSendEvent(Connection(), m_target, False, NoEventMask, &sent);
        XFlush(Connection());
    }
    // The first word behind the window's own name, meanwhile handing out what is dragged.
    long WaitFor(const char* message) const {
        long word = 0;
        WaitUntil(std::string("the window answers ") + message, [&] {
            while (XPending(Connection()) > 0) {
                XEvent event;
                XNextEvent(Connection(), &event);
                if (event.type == SelectionRequest) HandOut(event.xselectionrequest);
                if (event.type != ClientMessage || event.xclient.message_type != Named(message)) continue;
                word = event.xclient.data.l[1];
                return true;
            }
            return false;
        });
        return word;
    }
    [[nodiscard]] Atom Named(const char* name) const { return XInternAtom(Connection(), name, False); }

private:
    [[nodiscard]] Display* Connection() const { return m_display.get(); }
    void HandOut(const XSelectionRequestEvent& request) const {
        const std::vector<unsigned char> bytes(m_text.begin(), m_text.end());
        XChangeProperty(Connection(), request.requestor, request.property, request.target, 8, PropModeReplace,
                        bytes.data(), static_cast<int>(bytes.size()));
        XEvent answer{};
        answer.xselection.type = SelectionNotify;
        answer.xselection.requestor = request.requestor;
        answer.xselection.selection = request.selection;
        answer.xselection.target = request.target;
        answer.xselection.property = request.property;
        answer.xselection.time = request.time;
        XSendEvent(Connection(), request.requestor, False, NoEventMask, &answer);
        XFlush(Connection());
    }

    std::unique_ptr<Display, CloseDisplay> m_display;
    Window m_window = 0;
    Window m_target;
    std::string m_text;
};

}  // namespace

void DropFile(const std::string& display, const WindowPlace& target, const std::filesystem::path& file) {
    constexpr long version = 5L << 24;
    const DropSource source(display, target.id, file);
    const auto atom = [&](const char* name) { return static_cast<long>(source.Named(name)); };
    source.Send("XdndEnter", {version, atom("text/uri-list"), 0, 0});
    const long place = static_cast<long>(target.x + target.width / 4) << 16 | (target.y + target.height / 4);
    source.Send("XdndPosition", {0, place, CurrentTime, atom("XdndActionCopy")});
    if ((source.WaitFor("XdndStatus") & 1) == 0) throw std::runtime_error("the window takes no files");
    source.Send("XdndDrop", {0, CurrentTime, 0, 0});
    (void)source.WaitFor("XdndFinished");
}

}  // namespace kel::testing
