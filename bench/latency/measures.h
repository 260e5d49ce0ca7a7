#pragma once

#include <vector>

#include "bench/latency/drawing_program.h"
#include "tests/kel/window/virtual_display.h"

namespace latency {

// Milliseconds that stand for what did not come within the time that is waited for it.
constexpr double neverCame = 1500;

// What is measured at a program that draws red ink where the left button is held.
struct Figures {
    std::vector<double> toChange;  // milliseconds from a motion event to the first other pixel around it
    std::vector<double> toTip;     // milliseconds until the ink has come to the pointer
    std::vector<double> behind;    // pixels from the pointer back to the ink's end, at 600 pixels a second
    double idleShare = 0;          // of one core, while nothing happens
    double drawingShare = 0;       // of one core, while the pointer draws at 600 pixels a second
    double pictures = 0;           // a second, in which the ink's line changed meanwhile
    double videoIdle = 0;          // pictures a second of a video that plays, while nothing else happens
    double videoDrawing = 0;       // the same while the pointer draws
    int rounds = 0;                // that the last five are sums of

    void Add(const Figures& other);
};

// Where on the screen it is drawn: some 1000 x 200 pixels that begin here. The picture reaches `left` and `above`
// pixels further, and no stroke comes to what is above.
struct DrawingPlace {
    int x = 0;
    int y = 0;
    int left = 0;
    int above = 0;
};

// The program's window is shown, and all on it stands still, or it is a video that plays for as long as this takes.
//   events   motions to measure, each on its own
//   seconds  of doing nothing
[[nodiscard]] Figures Measure(kel::testing::VirtualDisplay& display, const DrawingProgram& program, DrawingPlace place,
                              int events, double seconds);

// The value that this share of the values does not exceed; share is 0 .. 1. Of none: neverCame.
[[nodiscard]] double Quantile(std::vector<double> values, double share);

}  // namespace latency
