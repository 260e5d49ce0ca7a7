#if KEL_WITH_X11
#include "kel/window/display_refusals.h"

#include <doctest/doctest.h>

#include <initializer_list>

// Its macros are words that others use.
#include <X11/Xlib.h>

namespace kel {
namespace {

int callsOfAnother = 0;

int HandleOtherwise(Display*, XErrorEvent*) { return ++callsOfAnother; }

int AnswerTo(int error) {
    const XErrorHandler handler = XSetErrorHandler(nullptr);
    XSetErrorHandler(handler);
    XErrorEvent event{};
    event.error_code = static_cast<unsigned char>(error);
    return handler(nullptr, &event);
}

}  // namespace

// As SDL does: its start puts a handler of its own in place, and its end what was there before.
TEST_CASE("What a display refuses is passed over in the work and in the end, however often that begins") {
    const XErrorHandler before = XSetErrorHandler(nullptr);
    for (int times = 0; times < 2; ++times) {
        PassOverRefusals();
        const XErrorHandler found = XSetErrorHandler(HandleOtherwise);
        PassOverRefusals();
        for (const int error : {BadWindow, BadMatch, BadDrawable, BadValue}) CHECK_EQ(AnswerTo(error), 0);
        XSetErrorHandler(found);
        CHECK_EQ(AnswerTo(BadWindow), 0);
    }
    CHECK_EQ(callsOfAnother, 0);
    XSetErrorHandler(before);
}

}  // namespace kel
#endif
