#include "bench/latency/screen_watch.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XShm.h>
#include <sys/ipc.h>
#include <sys/shm.h>

#include <algorithm>
#include <stdexcept>

namespace latency {

struct ScreenWatch::Shared {
    Display* display = nullptr;
    XImage* image = nullptr;
    XShmSegmentInfo segment{};
};

ScreenWatch::ScreenWatch(const std::string& display, const Area& area)
    : m_area(area),
      m_shared(std::make_unique<Shared>()),
      m_last(static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height)) {
    m_shared->display = XOpenDisplay(display.c_str());
    if (m_shared->display == nullptr) throw std::runtime_error("no connection to " + display);
    const int screen = DefaultScreen(m_shared->display);
    m_shared->image =
        XShmCreateImage(m_shared->display, DefaultVisual(m_shared->display, screen),
                        static_cast<unsigned>(DefaultDepth(m_shared->display, screen)), ZPixmap, nullptr,
                        &m_shared->segment, static_cast<unsigned>(area.width), static_cast<unsigned>(area.height));
    if (m_shared->image == nullptr || m_shared->image->bits_per_pixel != 32)
        throw std::runtime_error("the display shares no pictures of 32 bits a pixel");
    const auto bytes = static_cast<std::size_t>(m_shared->image->bytes_per_line) * static_cast<unsigned>(area.height);
    m_shared->segment.shmid = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
    if (m_shared->segment.shmid < 0) throw std::runtime_error("no shared memory");
    m_shared->segment.shmaddr = m_shared->image->data = static_cast<char*>(shmat(m_shared->segment.shmid, nullptr, 0));
    XShmAttach(m_shared->display, &m_shared->segment);
    XSync(m_shared->display, False);
    shmctl(m_shared->segment.shmid, IPC_RMID, nullptr);  // goes when both sides have let go
    Look();
}

ScreenWatch::~ScreenWatch() {
    XShmDetach(m_shared->display, &m_shared->segment);
    XDestroyImage(m_shared->image);
    shmdt(m_shared->segment.shmaddr);
    XCloseDisplay(m_shared->display);
}

void ScreenWatch::MoveTo(int x, int y) {
    m_area.x = x;
    m_area.y = y;
    Look();
}

bool ScreenWatch::Look() {
    XShmGetImage(m_shared->display, DefaultRootWindow(m_shared->display), m_shared->image, m_area.x, m_area.y,
                 AllPlanes);
    const auto width = static_cast<std::size_t>(m_area.width);
    bool isOther = false;
    for (int y = 0; y < m_area.height; ++y) {
        const auto* row = static_cast<const std::uint32_t*>(
            static_cast<const void*>(m_shared->image->data + std::ptrdiff_t{y} * m_shared->image->bytes_per_line));
        std::uint32_t* last = m_last.data() + static_cast<std::size_t>(y) * width;
        isOther = isOther || !std::equal(row, row + width, last);
        std::copy_n(row, width, last);
    }
    return isOther;
}

std::uint32_t ScreenWatch::At(int x, int y) const {
    return m_last[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_area.width) + static_cast<std::size_t>(x)] &
           0xFFFFFFU;
}

int ScreenWatch::LastInkedColumn() const {
    for (int x = m_area.width - 1; x >= 0; --x)
        for (int y = 0; y < m_area.height; ++y)
            if (IsInk(At(x, y))) return x;
    return -1;
}

bool ScreenWatch::IsInk(std::uint32_t pixel) {
    const auto channel = [pixel](unsigned shift) { return static_cast<int>(pixel >> shift & 0xFFU); };
    return channel(16) > 200 && channel(8) < 110 && channel(0) < 110;
}

}  // namespace latency
