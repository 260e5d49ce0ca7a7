#include "kel/window/ink_tail.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "kel/scene/gl.h"

namespace kel {
namespace {

// A path that bends smoothly is known as far as the place before the last one; the tail begins one earlier, under ink.
constexpr std::size_t heldPlaces = 3;

struct WindowPoint {
    double x = 0;  // pixels, from the lower left corner
    double y = 0;
};

// Of the window, y upwards.
struct WindowDab {
    WindowPoint middle;
    WindowPoint across;
    WindowPoint down;
};

// Not so small that nothing is seen of it.
WindowDab InWindow(const ScenePixel& at, const SeenDab& dab, const PictureArea& picture, WindowSize scene,
                   WindowSize window) {
    constexpr double smallest = 0.5;  // pixels
    const double shown = 1.0 * picture.width / scene.width;
    const auto half = dab.HalfSize();
    const double largest = std::max(half[0], half[1]);
    const double scale = largest > 0 ? std::max(shown, smallest / largest) : shown;
    return {{picture.x + (at.x + 0.5) * picture.width / scene.width,
             window.height - (picture.y + (at.y + 0.5) * picture.height / scene.height)},
            {dab.across[0] * scale, -dab.across[1] * scale},
            {dab.down[0] * scale, -dab.down[1] * scale}};
}

void DrawDab(const WindowDab& dab) {
    constexpr int corners = 20;
    glBegin(GL_TRIANGLE_FAN);
    for (int i = 0; i < corners; ++i) {
        const double angle = 2 * std::numbers::pi * i / corners;
        glVertex2d(dab.middle.x + std::cos(angle) * dab.across.x + std::sin(angle) * dab.down.x,
                   dab.middle.y + std::cos(angle) * dab.across.y + std::sin(angle) * dab.down.y);
    }
    glEnd();
}

// From the dab's middle to where its edge runs along with the direction (x, y), to the left of that.
WindowPoint EdgeAlong(const WindowDab& dab, double x, double y) {
    const double u = -dab.across.x * y + dab.across.y * x;
    const double v = -dab.down.x * y + dab.down.y * x;
    const double length = std::hypot(u, v);
    if (length <= 0) return {};
    return {(dab.across.x * u + dab.down.x * v) / length, (dab.across.y * u + dab.down.y * v) / length};
}

void DrawBand(const WindowDab& from, const WindowDab& to) {
    const double alongX = to.middle.x - from.middle.x;
    const double alongY = to.middle.y - from.middle.y;
    const WindowPoint first = EdgeAlong(from, alongX, alongY);
    const WindowPoint last = EdgeAlong(to, alongX, alongY);
    glBegin(GL_QUADS);
    glVertex2d(from.middle.x + first.x, from.middle.y + first.y);
    glVertex2d(from.middle.x - first.x, from.middle.y - first.y);
    glVertex2d(to.middle.x - last.x, to.middle.y - last.y);
    glVertex2d(to.middle.x + last.x, to.middle.y + last.y);
    glEnd();
}

// Puts back what it changes of OpenGL's state.
class PlainDrawing {
public:
    PlainDrawing(WindowSize window, const FrameArea& part) {
        glPushAttrib(GL_ENABLE_BIT | GL_CURRENT_BIT | GL_SCISSOR_BIT | GL_VIEWPORT_BIT | GL_TRANSFORM_BIT);
        for (const int what : {GL_TEXTURE_2D, GL_DEPTH_TEST, GL_ALPHA_TEST, GL_BLEND, GL_LIGHTING})
            glDisable(static_cast<GLenum>(what));
        glEnable(GL_SCISSOR_TEST);
        glScissor(part.x, part.y, std::max(part.width, 0), std::max(part.height, 0));
        glViewport(0, 0, window.width, window.height);
        glMatrixMode(GL_PROJECTION);
        glPushMatrix();
        glLoadIdentity();
        glOrtho(0, window.width, 0, window.height, -1, 1);
        glMatrixMode(GL_MODELVIEW);
        glPushMatrix();
        glLoadIdentity();
    }
    ~PlainDrawing() {
        glMatrixMode(GL_PROJECTION);
        glPopMatrix();
        glMatrixMode(GL_MODELVIEW);
        glPopMatrix();
        glPopAttrib();
    }
    PlainDrawing(const PlainDrawing&) = delete;
    PlainDrawing& operator=(const PlainDrawing&) = delete;
    PlainDrawing(PlainDrawing&&) = delete;
    PlainDrawing& operator=(PlainDrawing&&) = delete;
};

}  // namespace

void InkTail::Press(const ScenePixel& at, const SeenDab& dab, const TailPen& pen) {
    m_places.clear();
    m_pen = pen;
    if (pen.isSeen) m_places.push_back({at, dab});
}

void InkTail::Move(const ScenePixel& at, const SeenDab& dab) {
    if (m_places.empty() || m_places.back().at == at) return;
    m_places.push_back({at, dab});
    if (m_places.size() > heldPlaces) m_places.pop_front();
}

FrameArea InkTail::Area(const PictureArea& picture, WindowSize scene, WindowSize window) const {
    if (m_places.size() < 2) return {};
    double left = window.width;
    double right = 0;
    double bottom = window.height;
    double top = 0;
    for (const Place& place : m_places) {
        const WindowDab dab = InWindow(place.at, place.dab, picture, scene, window);
        const double halfWidth = std::hypot(dab.across.x, dab.down.x) + 1;
        const double halfHeight = std::hypot(dab.across.y, dab.down.y) + 1;
        left = std::min(left, dab.middle.x - halfWidth);
        right = std::max(right, dab.middle.x + halfWidth);
        bottom = std::min(bottom, dab.middle.y - halfHeight);
        top = std::max(top, dab.middle.y + halfHeight);
    }
    const auto x = static_cast<std::int32_t>(std::floor(left));
    const auto y = static_cast<std::int32_t>(std::floor(bottom));
    return {x, y, static_cast<std::int32_t>(std::ceil(right)) - x, static_cast<std::int32_t>(std::ceil(top)) - y};
}

void InkTail::Draw(const PictureArea& picture, WindowSize scene, WindowSize window, const FrameArea& part) const {
    if (m_places.size() < 2) return;
    const PlainDrawing drawing(window, part);
    glColor3ub(m_pen.colour[0], m_pen.colour[1], m_pen.colour[2]);
    const auto dabOf = [&](const Place& place) { return InWindow(place.at, place.dab, picture, scene, window); };
    for (std::size_t i = 0; i < m_places.size(); ++i) {
        DrawDab(dabOf(m_places[i]));
        if (i > 0) DrawBand(dabOf(m_places[i - 1]), dabOf(m_places[i]));
    }
}

}  // namespace kel
