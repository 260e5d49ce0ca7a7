#include "kel/window/brush_cursor.h"

#include <SDL.h>
#include <imgui.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace kel {
namespace {

constexpr int smallestRadius = 2;  // pixels: less is not found on the screen

// How much of a pixel at this distance a line of one pixel width covers, whose middle lies at `radius`.
double Coverage(double distance, double radius) { return std::clamp(1.0 - std::abs(distance - radius), 0.0, 1.0); }

// White inside black, so that it is seen on everything.
SDL_Cursor* MakeRing(int radius) {
    const int side = 2 * radius + 5;
    const int middle = side / 2;
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const double distance = std::hypot(x - middle, y - middle);
            const double white = Coverage(distance, radius);
            const double alpha = std::max(white, 0.7 * Coverage(distance, radius + 1.0));
            const auto level = static_cast<std::uint32_t>(alpha > 0 ? 255 * white / alpha : 0);
            pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(side) + static_cast<std::size_t>(x)] =
                static_cast<std::uint32_t>(255 * alpha) << 24U | level << 16U | level << 8U | level;
        }
    SDL_Surface* surface =
        SDL_CreateRGBSurfaceWithFormatFrom(pixels.data(), side, side, 32, side * 4, SDL_PIXELFORMAT_ARGB8888);
    SDL_Cursor* cursor = surface == nullptr ? nullptr : SDL_CreateColorCursor(surface, middle, middle);
    SDL_FreeSurface(surface);
    return cursor;
}

}  // namespace

void BrushCursor::FreeCursor::operator()(SDL_Cursor* cursor) const { SDL_FreeCursor(cursor); }

BrushCursor::BrushCursor() : m_cross(SDL_CreateSystemCursor(SDL_SYSTEM_CURSOR_CROSSHAIR)) {}
BrushCursor::~BrushCursor() = default;

void BrushCursor::Show(double radius) {
    const bool isRing = radius > 0 && radius <= largestRadius;
    const int wanted = isRing ? std::max(static_cast<int>(std::lround(radius)), smallestRadius) : 0;
    if (m_isShown && wanted == m_radius) return;
    ImGui::GetIO().ConfigFlags |= ImGuiConfigFlags_NoMouseCursorChange;
    auto before = std::move(m_ring);  // is the one shown until another is
    m_ring.reset(wanted > 0 ? MakeRing(wanted) : nullptr);
    SDL_SetCursor(m_ring ? m_ring.get() : m_cross.get());
    m_radius = wanted;
    m_isShown = true;
}

void BrushCursor::Hide() {
    if (!m_isShown) return;
    ImGui::GetIO().ConfigFlags &= ~ImGuiConfigFlags_NoMouseCursorChange;
    SDL_SetCursor(SDL_GetDefaultCursor());
    m_isShown = false;
}

}  // namespace kel
