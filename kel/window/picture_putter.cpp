#include "kel/window/picture_putter.h"

#if KEL_WITH_SHARED_PICTURES
#include <SDL.h>
#include <SDL_syswm.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XShm.h>
#include <sys/ipc.h>
#include <sys/shm.h>

#include <string_view>

#include "kel/scene/gl.h"
#endif

namespace kel {
#if KEL_WITH_SHARED_PICTURES
namespace {

bool IsSoftware() {
    const auto* name = static_cast<const char*>(static_cast<const void*>(glGetString(GL_RENDERER)));
    const std::string_view renderer = name == nullptr ? "" : name;
    return renderer.find("llvmpipe") != std::string_view::npos || renderer.find("softpipe") != std::string_view::npos;
}

// As FrameBuffer::ReadForScreen writes them.
bool HasScreenPixels(const XImage& image) {
    return image.bits_per_pixel == 32 && image.byte_order == LSBFirst && image.red_mask == 0xFF0000 &&
           image.green_mask == 0xFF00 && image.blue_mask == 0xFF;
}

bool& HasFailed() {
    static bool failed = false;
    return failed;
}

int NoteFailure(::Display*, XErrorEvent*) {
    HasFailed() = true;
    return 0;
}

// An image of the window's kind in memory that the display reads too. A display on another machine cannot.
class SharedImage {
public:
    SharedImage(::Display* display, const XWindowAttributes& window, WindowSize size) : m_display(display) {
        m_image = XShmCreateImage(display, window.visual, static_cast<unsigned>(window.depth), ZPixmap, nullptr,
                                  &m_segment, static_cast<unsigned>(size.width), static_cast<unsigned>(size.height));
        if (m_image == nullptr || !HasScreenPixels(*m_image)) return;
        const auto bytes = static_cast<std::size_t>(m_image->bytes_per_line) * static_cast<std::size_t>(size.height);
        m_segment.shmid = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
        if (m_segment.shmid < 0) return;
        void* const memory = shmat(m_segment.shmid, nullptr, 0);
        if (memory != reinterpret_cast<void*>(-1)) {
            m_segment.shmaddr = m_image->data = static_cast<char*>(memory);
            Attach();
        }
        shmctl(m_segment.shmid, IPC_RMID, nullptr);  // goes when both sides have let go
    }
    ~SharedImage() {
        if (m_isAttached) XShmDetach(m_display, &m_segment);
        XSync(m_display, False);
        if (m_image != nullptr) {
            m_image->data = nullptr;  // is not the image's own
            XDestroyImage(m_image);
        }
        if (m_segment.shmaddr != nullptr) shmdt(m_segment.shmaddr);
    }
    SharedImage(const SharedImage&) = delete;
    SharedImage& operator=(const SharedImage&) = delete;
    SharedImage(SharedImage&&) = delete;
    SharedImage& operator=(SharedImage&&) = delete;

    [[nodiscard]] bool IsThere() const { return m_isAttached; }
    [[nodiscard]] XImage* Image() const { return m_image; }

private:
    void Attach() {
        XSync(m_display, False);
        HasFailed() = false;
        const XErrorHandler before = XSetErrorHandler(NoteFailure);
        XShmAttach(m_display, &m_segment);
        XSync(m_display, False);
        XSetErrorHandler(before);
        m_isAttached = !HasFailed();
    }

    ::Display* m_display;
    XImage* m_image = nullptr;
    XShmSegmentInfo m_segment{};
    bool m_isAttached = false;
};

}  // namespace

struct PicturePutter::Display {
    ::Display* display = nullptr;  // SDL's
    ::Window window = 0;
    GC context = nullptr;
    WindowSize size;  // of the image
    std::unique_ptr<SharedImage> image{};

    // False: there is none of this size.
    bool Fit(WindowSize wanted) {
        if (image && size.width == wanted.width && size.height == wanted.height) return image->IsThere();
        XWindowAttributes attributes;
        if (XGetWindowAttributes(display, window, &attributes) == 0) return false;
        image = std::make_unique<SharedImage>(display, attributes, wanted);
        size = wanted;
        return image->IsThere();
    }
    ~Display() {
        image.reset();
        if (context != nullptr) XFreeGC(display, context);
    }
};

PicturePutter::PicturePutter(SDL_Window* window) {
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (SDL_GetWindowWMInfo(window, &info) != SDL_TRUE || info.subsystem != SDL_SYSWM_X11 || !IsSoftware()) return;
    if (XShmQueryExtension(info.info.x11.display) == False) return;
    m_display = std::make_unique<Display>();
    m_display->display = info.info.x11.display;
    m_display->window = info.info.x11.window;
    m_display->context = XCreateGC(m_display->display, m_display->window, 0, nullptr);
}

bool PicturePutter::Put(const Host& host, const FrameArea& picture, const FrameArea& part, WindowSize window) {
    if (!m_display || !m_display->Fit(window)) return false;
    // The display reads what was put before until it has answered.
    XSync(m_display->display, False);
    XImage* const image = m_display->image->Image();
    const std::int32_t top = window.height - part.y - part.height;
    char* const first = image->data + std::ptrdiff_t{top} * image->bytes_per_line + std::ptrdiff_t{part.x} * 4;
    host.ReadForScreen({part.x - picture.x, part.y - picture.y, part.width, part.height}, first,
                       image->bytes_per_line / 4);
    XShmPutImage(m_display->display, m_display->window, m_display->context, image, part.x, top, part.x, top,
                 static_cast<unsigned>(part.width), static_cast<unsigned>(part.height), False);
    XFlush(m_display->display);
    return true;
}
#else
struct PicturePutter::Display {};
PicturePutter::PicturePutter(SDL_Window*) {}
bool PicturePutter::Put(const Host&, const FrameArea&, const FrameArea&, WindowSize) { return false; }
#endif

PicturePutter::~PicturePutter() = default;

}  // namespace kel
