#pragma once

#include <cstddef>

#include "module/plugin_instance.h"

namespace chalkpane {

// Three recognisers that look at the stored stroke points and, when one accepts, draw a clean shape on `shapeSurface`.
//
// Each returns true when it accepted and drew; it draws nothing otherwise. Each declines without the buffers, with its
// own parameter off, and beyond `recognitionPointLimit`. The distance tolerance of all is BrushWidth: a thicker pen may
// be drawn more loosely. The rows of the searches run on the workers; the result does not depend on their number.

// No hand draws that many points; the searches take up to the square of it.
constexpr std::int32_t recognitionPointLimit = 20000;

// The circle search's counters: centre column, centre row, radius bin.
constexpr std::size_t houghCells = 256;
constexpr std::size_t houghCounters = houghCells * houghCells * houghCells;

// wanted: makes the stroke points and the counters, 76 MiB, unless they stand; otherwise frees them. The point count
// stays either way. When memory runs out `recognitionBuffersReady` stays clear.
void SizeRecognitionBuffers(PluginInstance& instance, bool wanted) noexcept;

[[nodiscard]] bool RecognizeEllipse(PluginInstance& instance);
[[nodiscard]] bool RecognizeCircle(PluginInstance& instance);
[[nodiscard]] bool RecognizeCross(PluginInstance& instance);

}  // namespace chalkpane
