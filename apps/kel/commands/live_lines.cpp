#include "apps/kel/commands/live_lines.h"

#include <cstdio>

namespace kel {

void TellStreams(const LiveStreams& streams) {
    for (const LiveFigures& figures : streams.Figures()) std::printf("%s\n", BeginningOf(figures).c_str());
    std::fflush(stdout);
}

void CloseStreams(LiveStreams& streams) {
    streams.Close();
    for (const LiveFigures& figures : streams.Figures()) std::printf("%s\n", EndOf(figures).c_str());
    std::fflush(stdout);
}

}  // namespace kel
