#include "kel/window/panel_pages.h"

#include <doctest/doctest.h>
#include <imgui.h>
#include <imgui_internal.h>

namespace kel {
namespace {

// Drawn within a clip that is all of a window of 400 x 300 pixels, as ImGui draws the frames of its pages.
struct Drawn {
    explicit Drawn(const ImVec2& from, const ImVec2& to, ImU32 colour = IM_COL32_WHITE) {
        list._ResetForNewFrame();
        list.PushClipRect({0, 0}, {400, 300});
        list.AddRectFilled(from, to, colour);
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

TEST_CASE("A page is solid where its ground is opaque, of whole pixels, and all of it") {
    const auto isSolid = [](const Drawn& drawn) { return PagesOf(drawn.data, {400, 300})[0].isSolid; };
    CHECK(isSolid(Drawn({20, 30}, {120, 50})));
    CHECK(isSolid(Drawn({20, 30}, {500, 350})));  // as far as the window goes
    CHECK_FALSE(isSolid(Drawn({20, 30}, {120, 50}, IM_COL32(255, 255, 255, 254))));
    CHECK_FALSE(isSolid(Drawn({20, 30}, {120, 50.5F})));
    Drawn withMore({20, 30}, {120, 50});
    withMore.list.AddRectFilled({30, 40}, {60, 50}, IM_COL32_BLACK);
    CHECK(isSolid(withMore));
    withMore.list.AddRectFilled({30, 40}, {60, 51}, IM_COL32_BLACK);  // below its ground
    CHECK_FALSE(isSolid(withMore));
    Drawn bare({0, 0}, {1, 1});
    bare.list._ResetForNewFrame();
    CHECK_FALSE(isSolid(bare));
}

TEST_CASE("What of a part lies under solid pages is not drawn, and what a page covers in its middle is") {
    const std::vector<PanelPage> pages{
        {{300, 20, 100, 280}, 1, true}, {{0, 0, 400, 20}, 2, true}, {{0, 0, 150, 300}, 3, false}};
    CHECK_EQ(Uncovered({0, 0, 400, 300}, pages) == FrameArea{0, 20, 300, 280}, true);
    CHECK_EQ(Uncovered({100, 5, 250, 40}, pages) == FrameArea{100, 20, 200, 25}, true);
    CHECK_EQ(Uncovered({10, 30, 100, 40}, pages) == FrameArea{10, 30, 100, 40}, true);
    CHECK(Uncovered({310, 30, 50, 40}, pages).IsEmpty());
    CHECK(Uncovered({}, pages).IsEmpty());
    const std::vector<PanelPage> middle{{{100, 100, 50, 50}, 1, true}};
    CHECK_EQ(Uncovered({0, 0, 400, 300}, middle) == FrameArea{0, 0, 400, 300}, true);
    CHECK_EQ(Uncovered({120, 110, 100, 20}, middle) == FrameArea{150, 110, 70, 20}, true);
}

}  // namespace kel
