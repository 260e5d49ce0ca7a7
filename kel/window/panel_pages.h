#pragma once

#include <cstdint>
#include <vector>

#include "kel/scene/host.h"

struct ImDrawData;

namespace kel {

// A page of the panel as it was drawn last.
struct PanelPage {
    FrameArea area;            // of the window: where it draws anything
    std::uint64_t digest = 0;  // of how it looks
    bool isSolid = false;      // nothing that lies under it is seen through it
    friend bool operator==(const PanelPage&, const PanelPage&) = default;
};

// In the order in which they are drawn.
[[nodiscard]] std::vector<PanelPage> PagesOf(const ImDrawData& data, WindowSize window);

// What is left of the part beside the solid pages that cover it from one side to the other.
[[nodiscard]] FrameArea Uncovered(FrameArea part, const std::vector<PanelPage>& pages);

}  // namespace kel
