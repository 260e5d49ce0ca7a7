#include "kel/window/panel_pages.h"

#include <imgui.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "kel/scene/scene_changes.h"

namespace kel {
namespace {

// A rectangle of the panel's, which counts from the upper left corner.
FrameArea AreaOf(const ImVec4& clip, WindowSize window) {
    const auto clamped = [](float at, std::int32_t most) { return std::clamp(static_cast<std::int32_t>(at), 0, most); };
    const std::int32_t x0 = clamped(std::floor(clip.x), window.width);
    const std::int32_t y0 = clamped(std::floor(clip.y), window.height);
    const std::int32_t x1 = clamped(std::ceil(clip.z), window.width);
    const std::int32_t y1 = clamped(std::ceil(clip.w), window.height);
    return {x0, window.height - y1, std::max(x1 - x0, 0), std::max(y1 - y0, 0)};
}

// What a command draws in. Its clip alone is often all of the window: a page's frame is drawn so.
ImVec4 Extent(const ImDrawList& list, const ImDrawCmd& command) {
    ImVec4 drawn{command.ClipRect.z, command.ClipRect.w, command.ClipRect.x, command.ClipRect.y};
    for (unsigned i = 0; i < command.ElemCount; ++i) {
        const ImDrawIdx index = list.IdxBuffer[static_cast<int>(command.IdxOffset + i)];
        const ImVec2& at = list.VtxBuffer[static_cast<int>(command.VtxOffset + index)].pos;
        drawn = {std::min(drawn.x, at.x), std::min(drawn.y, at.y), std::max(drawn.z, at.x), std::max(drawn.w, at.y)};
    }
    return {std::max(drawn.x, command.ClipRect.x), std::max(drawn.y, command.ClipRect.y),
            std::min(drawn.z, command.ClipRect.z), std::min(drawn.w, command.ClipRect.w)};
}

template <typename T>
void AddTo(std::uint64_t& digest, const ImVector<T>& values) {
    constexpr std::uint64_t prime = 0x100000001B3;  // of the hash by Fowler, Noll and Vo, taken word by word
    const auto* bytes = static_cast<const unsigned char*>(static_cast<const void*>(values.Data));
    const auto count = static_cast<std::size_t>(values.size_in_bytes());
    std::uint64_t word = 0;
    std::size_t at = 0;
    for (; at + sizeof word <= count; at += sizeof word) {
        std::memcpy(&word, bytes + at, sizeof word);
        digest = (digest ^ word) * prime;
        digest ^= digest >> 29U;
    }
    for (; at < count; ++at) digest = (digest ^ bytes[at]) * prime;
}

std::uint64_t Digest(const ImDrawList& list) {
    std::uint64_t digest = 0xCBF29CE484222325;
    AddTo(digest, list.VtxBuffer);
    AddTo(digest, list.IdxBuffer);
    for (const ImDrawCmd& command : list.CmdBuffer) {
        const std::array clip{command.ClipRect.x, command.ClipRect.y, command.ClipRect.z, command.ClipRect.w};
        for (const float side : clip) digest = digest * 31 + static_cast<std::uint64_t>(std::lround(side));
    }
    return digest;
}

// It begins with a plain opaque rectangle over all of its area, as ImGui draws the ground of a page with square
// corners.
bool IsSolid(const ImDrawList& list, const FrameArea& area, WindowSize window) {
    constexpr std::array<ImDrawIdx, 6> twoTriangles{0, 1, 2, 0, 2, 3};
    constexpr int corners = 4;
    const auto& vertices = list.VtxBuffer;
    if (vertices.Size < corners || list.IdxBuffer.Size < static_cast<int>(twoTriangles.size()) ||
        !std::equal(twoTriangles.begin(), twoTriangles.end(), list.IdxBuffer.begin()))
        return false;
    const ImDrawVert& first = vertices[0];
    const ImVec2& from = first.pos;
    const ImVec2& to = vertices[2].pos;
    const auto isPlain = [&](const ImDrawVert& one) {  // all of it takes one texel, which for ImGui is its white one
        return one.col == first.col && one.uv.x == first.uv.x && one.uv.y == first.uv.y;
    };
    const auto isAt = [](const ImDrawVert& one, float x, float y) { return one.pos.x == x && one.pos.y == y; };
    const auto isWhole = [](float at) { return std::floor(at) == at; };
    return first.col >> IM_COL32_A_SHIFT == 255 && std::all_of(vertices.begin(), vertices.begin() + corners, isPlain) &&
           isAt(vertices[1], to.x, from.y) && isAt(vertices[3], from.x, to.y) && isWhole(from.x) && isWhole(from.y) &&
           isWhole(to.x) && isWhole(to.y) && AreaOf({from.x, from.y, to.x, to.y}, window) == area;
}

// Takes one end off a stretch that the cover lies at.
void TakeEnd(std::int32_t& at, std::int32_t& size, std::int32_t coverAt, std::int32_t coverSize) {
    if (coverAt == at)
        at += coverSize;
    else if (coverAt + coverSize != at + size)
        return;
    size -= coverSize;
}

}  // namespace

std::vector<PanelPage> PagesOf(const ImDrawData& data, WindowSize window) {
    std::vector<PanelPage> pages;
    for (int i = 0; i < data.CmdListsCount; ++i) {
        const ImDrawList& list = *data.CmdLists[i];
        PanelPage& page = pages.emplace_back();
        for (const ImDrawCmd& command : list.CmdBuffer)
            if (command.ElemCount > 0) page.area = Union(page.area, AreaOf(Extent(list, command), window));
        page.digest = Digest(list);
        page.isSolid = IsSolid(list, page.area, window);
    }
    return pages;
}

FrameArea Uncovered(FrameArea part, const std::vector<PanelPage>& pages) {
    const auto cut = [&](const PanelPage& page) {
        const FrameArea cover = page.isSolid ? Intersection(part, page.area) : FrameArea();
        if (cover.IsEmpty()) return false;
        const FrameArea before = part;
        if (cover.height == before.height) TakeEnd(part.x, part.width, cover.x, cover.width);
        if (cover.width == before.width) TakeEnd(part.y, part.height, cover.y, cover.height);
        return part != before;
    };
    while (!part.IsEmpty() && std::ranges::any_of(pages, cut)) continue;  // what one leaves another may cover
    return part;
}

}  // namespace kel
