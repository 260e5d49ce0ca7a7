#pragma once

namespace chalkpane::obs {

inline constexpr const char* sourceId = "chalkpane_source";
inline constexpr const char* filterId = "chalkpane_filter";

// A pane with nothing behind it, for a scene.
void RegisterPaneSource();
// A pane that lies over the source that the filter is put on, in that source's pixels.
void RegisterPaneFilter();

}  // namespace chalkpane::obs
