#include "kel/window/panel_pages.h"

#include <doctest/doctest.h>
#include <imgui.h>
#include <imgui_internal.h>

namespace kel {
namespace {

// Drawn within a clip that is all of a window of 400 x 300 pixels, as ImGui draws the frames of its pages.
struct Drawn {
    explicit Drawn(const ImVec2& from, const ImVec2& to) {
        list._ResetForNewFrame();
        list.PushClipRect({0, 0}, {400, 300});
        list.AddRectFilled(from, to, IM_COL32_WHITE);
        data.CmdListsCount = 1;
        data.CmdLists = &lists;
    }
    ImDrawListSharedData shared;
    ImDrawList list{&shared};
    ImDrawList* lists = &list;
    ImDrawData data;
};

}  // namespace

TEST_CASE("A page is where it draws something, not where it might") {
    const Drawn drawn({20, 30}, {120, 50});
    const auto pages = PagesOf(drawn.data, {400, 300});
    REQUIRE_EQ(pages.size(), 1);
    // Rows from the bottom: 300 - 50.
    CHECK_EQ(pages[0].area == FrameArea{20, 250, 100, 20}, true);
}

TEST_CASE("What a page draws beyond the window is not part of it") {
    const Drawn drawn({-50, 280}, {30, 350});
    const auto pages = PagesOf(drawn.data, {400, 300});
    REQUIRE_EQ(pages.size(), 1);
    CHECK_EQ(pages[0].area == FrameArea{0, 0, 30, 20}, true);
}

TEST_CASE("A page that draws nothing has no area") {
    Drawn drawn({0, 0}, {1, 1});
    drawn.list._ResetForNewFrame();
    const auto pages = PagesOf(drawn.data, {400, 300});
    REQUIRE_EQ(pages.size(), 1);
    CHECK_EQ(pages[0].area.IsEmpty(), true);
}

TEST_CASE("Pages that look otherwise have other digests") {
    const Drawn one({20, 30}, {120, 50});
    const Drawn same({20, 30}, {120, 50});
    const Drawn other({20, 30}, {121, 50});
    const auto digest = [](const Drawn& drawn) { return PagesOf(drawn.data, {400, 300})[0].digest; };
    CHECK_EQ(digest(one), digest(same));
    CHECK_NE(digest(one), digest(other));
}

}  // namespace kel
