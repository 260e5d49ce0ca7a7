#pragma once

namespace kel {

// How colours become red, green and blue. Exact: the same on every processor, each pixel with a colour of its own; what
// is written is made so. Fast: a few levels off and several times as fast, for what is only looked at.
enum class VideoConversion { Exact, Fast };

// Down: the top row first, as pictures are kept. Up: the bottom row first, as OpenGL takes them.
enum class RowOrder { Down, Up };

}  // namespace kel
