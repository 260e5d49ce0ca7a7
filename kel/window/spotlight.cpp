#include "kel/window/spotlight.h"

#include <imgui.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kel {
namespace {

constexpr ImU32 dim = IM_COL32(0, 0, 0, 170);
constexpr float softEdge = 24;      // pixels from light to dim
constexpr float smallest = 24;      // pixels: what a dot lights
constexpr float roomAround = 1.2F;  // times the stroke

// A ring of quads between two ellipses around one middle, each with a colour of its own.
void AddRing(ImDrawList& list, const ImVec2& middle, const ImVec2& inner, const ImVec2& outer, ImU32 innerColour,
             ImU32 outerColour) {
    constexpr int corners = 96;
    const ImVec2 uv = ImGui::GetFontTexUvWhitePixel();
    list.PrimReserve(corners * 6, (corners + 1) * 2);
    const auto first = list._VtxCurrentIdx;
    for (int i = 0; i <= corners; ++i) {
        const float angle = 2 * std::numbers::pi_v<float> * static_cast<float>(i) / corners;
        const float x = std::cos(angle);
        const float y = std::sin(angle);
        list.PrimWriteVtx({middle.x + inner.x * x, middle.y + inner.y * y}, uv, innerColour);
        list.PrimWriteVtx({middle.x + outer.x * x, middle.y + outer.y * y}, uv, outerColour);
    }
    for (unsigned i = 0; i < corners; ++i)
        for (const unsigned corner : {0U, 1U, 3U, 0U, 3U, 2U})
            list.PrimWriteIdx(static_cast<ImDrawIdx>(first + 2 * i + corner));
}

}  // namespace

void Spotlight::Press(const ScenePixel& at) { m_drawing = Bounds{at.x, at.y, at.x, at.y}; }

void Spotlight::Move(const ScenePixel& at) {
    if (!m_drawing) return;
    m_drawing->left = std::min(m_drawing->left, at.x);
    m_drawing->right = std::max(m_drawing->right, at.x);
    m_drawing->top = std::min(m_drawing->top, at.y);
    m_drawing->bottom = std::max(m_drawing->bottom, at.y);
}

void Spotlight::Release() {
    if (m_drawing) m_ring = m_drawing;
    m_drawing.reset();
}

void Spotlight::Show(const PictureArea& picture, WindowSize scene) const {
    if (!m_isOn || !m_ring) return;
    const float scaleX = static_cast<float>(picture.width) / static_cast<float>(scene.width);
    const float scaleY = static_cast<float>(picture.height) / static_cast<float>(scene.height);
    const ImVec2 middle{static_cast<float>(picture.x) + static_cast<float>(m_ring->left + m_ring->right) / 2 * scaleX,
                        static_cast<float>(picture.y) + static_cast<float>(m_ring->top + m_ring->bottom) / 2 * scaleY};
    // The ellipse through the corners' sides: half the box is its radius.
    const ImVec2 lit{std::max(static_cast<float>(m_ring->right - m_ring->left) / 2 * scaleX * roomAround, smallest),
                     std::max(static_cast<float>(m_ring->bottom - m_ring->top) / 2 * scaleY * roomAround, smallest)};
    const ImVec2 edge{lit.x + softEdge, lit.y + softEdge};
    const ImVec2 room = ImGui::GetIO().DisplaySize;
    const float far = 4 * (room.x + room.y);  // beyond all corners, also those of a flat ellipse
    ImDrawList& list = *ImGui::GetBackgroundDrawList();
    list.PushClipRect({static_cast<float>(picture.x), static_cast<float>(picture.y)},
                      {static_cast<float>(picture.x + picture.width), static_cast<float>(picture.y + picture.height)});
    AddRing(list, middle, lit, edge, IM_COL32(0, 0, 0, 0), dim);
    AddRing(list, middle, edge, {far, far}, dim, dim);
    list.PopClipRect();
}

}  // namespace kel
