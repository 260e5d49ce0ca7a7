#pragma once

#include <obs-module.h>

#include <array>

#include "obs/ink_pane.h"
#include "obs/upload_plan.h"

namespace chalkpane::obs {

// A pane's canvas as a texture of OBS. All calls come on OBS's graphics thread, but for the end, and where OBS has no
// graphics they do nothing.
class PaneTexture {
public:
    PaneTexture() = default;
    ~PaneTexture();
    PaneTexture(const PaneTexture&) = delete;
    PaneTexture& operator=(const PaneTexture&) = delete;
    PaneTexture(PaneTexture&&) = delete;
    PaneTexture& operator=(PaneTexture&&) = delete;

    // Hands what changed of the canvas to the graphics card. Not while something is drawn: copying between textures may
    // bind another target.
    void Upload(InkPane& pane);
    // Draws the canvas over the source, which has its upper left corner at 0, 0, as premultiplied colour over what is
    // there. The colours are those of a screen (sRGB), and are mixed as they are where the target has such; a target of
    // linear light gets linear light.
    void Draw(const PanePlace& place) const;

private:
    bool Make(InkPane& pane);

    gs_texture_t* m_canvas = nullptr;
    std::array<gs_texture_t*, std::size(uploadSides)> m_squares{};  // by the sizes of the plan
    gs_effect_t* m_effect = nullptr;
    bool m_hasFailed = false;
};

}  // namespace chalkpane::obs
