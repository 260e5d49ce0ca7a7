// Draws one stroke as a host without any renderer would and writes what is seen as a portable pixmap.
//   embed_telestrator out.ppm

#include <cmath>
#include <cstdio>

#include "examples/pixmap.h"
#include "telestrator/telestrator.h"

int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("embed_telestrator: give one file, out.ppm\n", stderr);
        return 2;
    }
    chalkpane::TelestratorSettings settings;
    settings.brushColour = 0xFF2020E0U;  // red, green, blue, alpha in memory
    settings.recogniseShapes = true;
    settings.shapeDelay = 1;
    chalkpane::Telestrator telestrator;
    if (!telestrator.Field(settings)) {
        std::fputs("embed_telestrator: no memory for the canvas\n", stderr);
        return 3;
    }
    // A circle as a hand draws it; a field passes with each position.
    const auto place = [](double t) {
        const double radius = 250 + 6 * std::sin(9 * t);
        return chalkpane::CanvasPosition{512 + radius * std::cos(t), 512 + 0.6 * radius * std::sin(t)};
    };
    telestrator.Press(settings, place(0));
    for (int step = 1; step < 63; ++step) {
        telestrator.Move(settings, place(0.1 * step));
        telestrator.Field(settings);
    }
    telestrator.Release(settings, place(6.28));
    for (int field = 0; field < settings.shapeDelay; ++field) telestrator.Field(settings);
    telestrator.Commit();
    const chalkpane::Rect changed = telestrator.TakeChange().rect;
    if (!WritePixmap(arguments[1], telestrator.canvasSurface->GetPixels())) {
        std::fprintf(stderr, "embed_telestrator: %s cannot be written\n", arguments[1]);
        return 2;
    }
    std::printf("changed %d,%d to %d,%d\n", changed.x0, changed.y0, changed.x1, changed.y1);
}
