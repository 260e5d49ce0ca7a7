#pragma once

namespace kel {

// How colours become red, green and blue. Exact: the same on every processor, each pixel with a colour of its own; what
// is written is made so. Fast: a few levels off and several times as fast, for what is only looked at.
enum class VideoConversion { Exact, Fast };

}  // namespace kel
