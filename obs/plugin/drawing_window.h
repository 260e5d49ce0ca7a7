#pragma once

#include <obs-module.h>

#include <memory>

#include "obs/ink_pane.h"

namespace chalkpane::obs {

// OBS shows a source in its Interact window and sends it the pointer, but neither a filter nor a scene. So there is a
// source of its own for that window, which no menu offers: it shows another source with the ink on it, and hands the
// pointer on to a pane.
class DrawingWindow {
public:
    DrawingWindow() = default;
    ~DrawingWindow() { Close(); }
    DrawingWindow(const DrawingWindow&) = delete;
    DrawingWindow& operator=(const DrawingWindow&) = delete;
    DrawingWindow(DrawingWindow&&) = delete;
    DrawingWindow& operator=(DrawingWindow&&) = delete;

    // Opens OBS's window, in place of the one that was open.
    //   shown  what is seen in it
    //   item   the source that the pane lies on, somewhere in `shown`, which is a scene then; null: `shown` itself
    void Open(const std::shared_ptr<InkPane>& pane, obs_source_t* shown, obs_source_t* item);
    void Close();

private:
    obs_weak_source_t* m_open = nullptr;
};

void RegisterDrawingWindow();

}  // namespace chalkpane::obs
