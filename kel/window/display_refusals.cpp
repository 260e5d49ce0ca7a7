#include "kel/window/display_refusals.h"

#if KEL_WITH_X11
#include <X11/Xlib.h>
#endif

namespace kel {
#if KEL_WITH_X11
namespace {

// The library's own: tells the error and ends the program.
XErrorHandler StandardHandler() {
    static const XErrorHandler handler = [] {
        const XErrorHandler before = XSetErrorHandler(nullptr);  // puts the library's own in place
        return XSetErrorHandler(before);
    }();
    return handler;
}

// What the server refuses is told when it is long over: a part that reaches beyond a window made smaller meanwhile, the
// keys for a window that has gone. All is drawn anew then anyway, and the library's own way would end the program, on
// the air. SDL's handler is left out: it calls the one that it replaced, which would be this one.
int HearRefusal(Display* display, XErrorEvent* error) {
    const bool isRefusal = error->error_code != BadAlloc && error->error_code != BadImplementation;
    return isRefusal ? 0 : StandardHandler()(display, error);
}

}  // namespace

void PassOverRefusals() {
    (void)StandardHandler();
    XSetErrorHandler(HearRefusal);
}
#else
void PassOverRefusals() {}
#endif

}  // namespace kel
