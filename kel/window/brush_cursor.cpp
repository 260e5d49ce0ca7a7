#include "kel/window/brush_cursor.h"

#include <SDL.h>
#include <imgui.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace kel {
namespace {

constexpr double smallestRadius = 2;  // pixels: less is not found on the screen

// How much of a pixel at this distance from the ring's middle line that line covers, one pixel wide.
double Coverage(double distance) { return std::clamp(1.0 - std::abs(distance), 0.0, 1.0); }

// How far a place is outside the ellipse, near its edge; below 0: inside. x and y: from its middle
double DistanceFrom(const SeenDab& dab, double x, double y) {
    const auto& [across, down] = dab;
    const double area = across[0] * down[1] - across[1] * down[0];
    const double u = (down[1] * x - down[0] * y) / area;
    const double v = (across[0] * y - across[1] * x) / area;
    const double share = std::hypot(u, v);
    if (share == 0) return -std::min(std::hypot(across[0], across[1]), std::hypot(down[0], down[1]));
    const double slope =
        std::hypot((down[1] * u - across[1] * v) / share / area, (across[0] * v - down[0] * u) / share / area);
    return (share - 1) / slope;
}

// White inside black, so that it is seen on everything.
SDL_Cursor* MakeRing(const SeenDab& dab) {
    const auto [halfWidth, halfHeight] = dab.HalfSize();
    const int middleX = static_cast<int>(std::ceil(halfWidth)) + 2;
    const int middleY = static_cast<int>(std::ceil(halfHeight)) + 2;
    const int width = 2 * middleX + 1;
    const int height = 2 * middleY + 1;
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const double distance = DistanceFrom(dab, x - middleX, y - middleY);
            const double white = Coverage(distance);
            const double alpha = std::max(white, 0.7 * Coverage(distance - 1));
            const auto level = static_cast<std::uint32_t>(alpha > 0 ? 255 * white / alpha : 0);
            pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)] =
                static_cast<std::uint32_t>(255 * alpha) << 24U | level << 16U | level << 8U | level;
        }
    SDL_Surface* surface =
        SDL_CreateRGBSurfaceWithFormatFrom(pixels.data(), width, height, 32, width * 4, SDL_PIXELFORMAT_ARGB8888);
    SDL_Cursor* cursor = surface == nullptr ? nullptr : SDL_CreateColorCursor(surface, middleX, middleY);
    SDL_FreeSurface(surface);
    return cursor;
}

// Whole pixels, so that it is made anew where another is seen; not smaller than can be found, nor edge-on.
std::array<int, 4> AxesOf(const SeenDab& dab) {
    const auto size = dab.HalfSize();
    const double largest = std::max(size[0], size[1]);
    if (!(largest > 0 && largest <= BrushCursor::largestRadius)) return {};
    const SeenDab found = largest < smallestRadius ? dab.Scaled(smallestRadius / largest) : dab;
    const auto whole = [](double at) { return static_cast<int>(std::lround(at)); };
    const std::array axes{whole(found.across[0]), whole(found.across[1]), whole(found.down[0]), whole(found.down[1])};
    return axes[0] * axes[3] == axes[1] * axes[2] ? std::array<int, 4>{} : axes;
}

}  // namespace

void BrushCursor::FreeCursor::operator()(SDL_Cursor* cursor) const { SDL_FreeCursor(cursor); }

BrushCursor::BrushCursor() : m_cross(SDL_CreateSystemCursor(SDL_SYSTEM_CURSOR_CROSSHAIR)) {}
BrushCursor::~BrushCursor() = default;

void BrushCursor::Show(const std::optional<SeenDab>& dab) {
    const std::array<int, 4> wanted = dab ? AxesOf(*dab) : std::array<int, 4>{};
    if (m_isShown && wanted == m_axes) return;
    ImGui::GetIO().ConfigFlags |= ImGuiConfigFlags_NoMouseCursorChange;
    auto before = std::move(m_ring);  // is the one shown until another is
    const SeenDab whole{{1.0 * wanted[0], 1.0 * wanted[1]}, {1.0 * wanted[2], 1.0 * wanted[3]}};
    m_ring.reset(wanted == std::array<int, 4>{} ? nullptr : MakeRing(whole));
    SDL_SetCursor(m_ring ? m_ring.get() : m_cross.get());
    m_axes = wanted;
    m_isShown = true;
}

void BrushCursor::Hide() {
    if (!m_isShown) return;
    ImGui::GetIO().ConfigFlags &= ~ImGuiConfigFlags_NoMouseCursorChange;
    SDL_SetCursor(SDL_GetDefaultCursor());
    m_isShown = false;
}

}  // namespace kel
