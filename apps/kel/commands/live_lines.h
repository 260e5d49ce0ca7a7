#pragma once

#include "kel/outputs/live_streams.h"

namespace kel {

// A line on standard output for each of what is sent live: where it is read, and what it is.
void TellStreams(const LiveStreams& streams);
// Ends them, with a line for each: how it did.
void CloseStreams(LiveStreams& streams);

}  // namespace kel
