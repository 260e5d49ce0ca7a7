#pragma once

#include <functional>
#include <optional>
#include <string>

namespace kel {

struct ReplayOptions {
    std::string journal;           // path
    std::string out;               // path; its ending says how, as for every output
    std::string over;              // a picture or a video to draw on; empty: nothing
    double speed = 1;              // above 0; 2: in half the time
    std::optional<double> length;  // seconds of the video, instead of a speed
    std::optional<double> from;    // seconds of the drawing, from its first press; what came before is there
    std::optional<double> to;      // seconds of the drawing
    double fieldsPerSecond = 50;   // of the drawing and of the video
    bool even = false;             // the pen at one pace and without pauses
    bool straight = false;         // ink alone has colours that are not multiplied by alpha
    bool each = false;             // one output for each stroke, its number before the name's ending
};

// Draws a journal (docs/journal.md) again and writes it. Without `over` outputs that can hold alpha get the ink alone,
// others ink on black. Throws Error, one line with the file and the reason; then nothing is written.
//
//   progress  is told the field that was written and how many there are; returns false to stop, and then nothing is
//             written. Empty: nobody asks
using ReplayProgress = std::function<bool(std::int64_t field, std::int64_t fields)>;
void ReplayJournal(const ReplayOptions& options, const ReplayProgress& progress = {});

}  // namespace kel
