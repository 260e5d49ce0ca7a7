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

WindowPoint InWindow(const ScenePixel& at, const PictureArea& picture, WindowSize scene, WindowSize window) {
    return {picture.x + (at.x + 0.5) * picture.width / scene.width,
            window.height - (picture.y + (at.y + 0.5) * picture.height / scene.height)};
}

void DrawDisc(const WindowPoint& at, double radius) {
    constexpr int corners = 20;
    glBegin(GL_TRIANGLE_FAN);
    for (int i = 0; i < corners; ++i) {
        const double angle = 2 * std::numbers::pi * i / corners;
        glVertex2d(at.x + radius * std::cos(angle), at.y + radius * std::sin(angle));
    }
    glEnd();
}

void DrawBand(const WindowPoint& from, const WindowPoint& to, double radius) {
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    if (length <= 0) return;
    const double acrossX = -(to.y - from.y) / length * radius;
    const double acrossY = (to.x - from.x) / length * radius;
    glBegin(GL_QUADS);
    glVertex2d(from.x + acrossX, from.y + acrossY);
    glVertex2d(from.x - acrossX, from.y - acrossY);
    glVertex2d(to.x - acrossX, to.y - acrossY);
    glVertex2d(to.x + acrossX, to.y + acrossY);
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

void InkTail::Press(const ScenePixel& at, const TailPen& pen) {
    m_places.clear();
    m_pen = pen;
    if (pen.radius > 0) m_places.push_back(at);
}

void InkTail::Move(const ScenePixel& at) {
    if (m_places.empty() || m_places.back() == at) return;
    m_places.push_back(at);
    if (m_places.size() > heldPlaces) m_places.pop_front();
}

FrameArea InkTail::Area(const PictureArea& picture, WindowSize scene, WindowSize window) const {
    if (m_places.size() < 2) return {};
    const double margin = m_pen.radius * picture.width / scene.width + 1;
    double left = window.width;
    double right = 0;
    double bottom = window.height;
    double top = 0;
    for (const ScenePixel& place : m_places) {
        const WindowPoint at = InWindow(place, picture, scene, window);
        left = std::min(left, at.x - margin);
        right = std::max(right, at.x + margin);
        bottom = std::min(bottom, at.y - margin);
        top = std::max(top, at.y + margin);
    }
    const auto x = static_cast<std::int32_t>(std::floor(left));
    const auto y = static_cast<std::int32_t>(std::floor(bottom));
    return {x, y, static_cast<std::int32_t>(std::ceil(right)) - x, static_cast<std::int32_t>(std::ceil(top)) - y};
}

void InkTail::Draw(const PictureArea& picture, WindowSize scene, WindowSize window, const FrameArea& part) const {
    if (m_places.size() < 2) return;
    const PlainDrawing drawing(window, part);
    glColor3ub(m_pen.colour[0], m_pen.colour[1], m_pen.colour[2]);
    const double radius = std::max(m_pen.radius * picture.width / scene.width, 0.5);
    for (std::size_t i = 0; i < m_places.size(); ++i) {
        const WindowPoint at = InWindow(m_places[i], picture, scene, window);
        DrawDisc(at, radius);
        if (i > 0) DrawBand(InWindow(m_places[i - 1], picture, scene, window), at, radius);
    }
}

}  // namespace kel
