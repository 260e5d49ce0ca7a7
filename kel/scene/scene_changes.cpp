#include "kel/scene/scene_changes.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "kel/scene/gl.h"
#include "kel/scene/matrix.h"

namespace kel {
namespace {

constexpr double textureMargin = 2;  // texels: a pixel takes from its texel and the next one to each side
constexpr double windowMargin = 2;   // pixels

struct Bounds {
    double x0 = std::numeric_limits<double>::infinity();
    double y0 = std::numeric_limits<double>::infinity();
    double x1 = -std::numeric_limits<double>::infinity();
    double y1 = -std::numeric_limits<double>::infinity();

    void Add(double x, double y) {
        x0 = std::min(x0, x);
        y0 = std::min(y0, y);
        x1 = std::max(x1, x);
        y1 = std::max(y1, y);
    }
    [[nodiscard]] bool IsEmpty() const { return !(x0 <= x1 && y0 <= y1); }
    template <typename Function>
    void ForEachCorner(Function function) const {
        for (const double x : {x0, x1})
            for (const double y : {y0, y1}) function(x, y);
    }
};

Matrix ReadMatrix(GLenum name) {
    Matrix matrix{};
    glGetDoublev(name, matrix.data());
    return matrix;
}

// From a container's own coordinates to those of the texture.
class TextureMap {
public:
    explicit TextureMap(const Matrix& texture) : m_texture(texture) {}

    // Flat and without perspective, as all that modules set by moving and scaling.
    [[nodiscard]] bool IsInvertible() const {
        return m_texture[3] == 0 && m_texture[7] == 0 && m_texture[15] == 1 && std::abs(Determinant()) > 1e-12 &&
               std::isfinite(Determinant());
    }
    void Map(double x, double y, Bounds& bounds) const {
        x /= coordinatesPerTexture;
        y /= coordinatesPerTexture;
        bounds.Add(m_texture[0] * x + m_texture[4] * y + m_texture[12],
                   m_texture[1] * x + m_texture[5] * y + m_texture[13]);
    }
    void MapBack(double s, double t, Bounds& bounds) const {
        s -= m_texture[12];
        t -= m_texture[13];
        bounds.Add((m_texture[5] * s - m_texture[4] * t) / Determinant() * coordinatesPerTexture,
                   (m_texture[0] * t - m_texture[1] * s) / Determinant() * coordinatesPerTexture);
    }

private:
    [[nodiscard]] double Determinant() const { return m_texture[0] * m_texture[5] - m_texture[4] * m_texture[1]; }

    const Matrix& m_texture;
};

// What of the container, in its own coordinates, shows the part. Where the texture ends within the container, its edge
// goes on beyond it: then it is all of the container.
Bounds ShownBy(const TextureMap& map, const ImageObject& image, const FrameArea& part, const Bounds& container) {
    Bounds spread;
    container.ForEachCorner([&](double x, double y) { map.Map(x, y, spread); });
    constexpr double rounding = 1e-5;
    const bool endsWithin =
        !(spread.x0 >= -rounding && spread.y0 >= -rounding && spread.x1 <= 1 + rounding && spread.y1 <= 1 + rounding);
    if (endsWithin) return container;
    const Bounds texels{(part.x - textureMargin) / image.width, (part.y - textureMargin) / image.height,
                        (part.x + part.width + textureMargin) / image.width,
                        (part.y + part.height + textureMargin) / image.height};
    Bounds shown;
    texels.ForEachCorner([&](double s, double t) { map.MapBack(s, t, shown); });
    return {std::max(shown.x0, container.x0), std::max(shown.y0, container.y0), std::min(shown.x1, container.x1),
            std::min(shown.y1, container.y1)};
}

// False where it reaches behind the camera.
bool Project(const Bounds& shown, const FrameArea& window, Bounds& seen) {
    const Matrix matrix = ReadMatrix(GL_PROJECTION_MATRIX) * ReadMatrix(GL_MODELVIEW_MATRIX);
    bool isBefore = true;
    shown.ForEachCorner([&](double x, double y) {
        const auto row = [&](std::size_t i) { return matrix[i] * x + matrix[4 + i] * y + matrix[12 + i]; };
        const double w = row(3);
        isBefore = isBefore && w > 1e-9;
        seen.Add((row(0) / w + 1) / 2 * window.width, (row(1) / w + 1) / 2 * window.height);
    });
    return isBefore;
}

FrameArea Within(const FrameArea& window, const Bounds& seen) {
    const auto clamped = [](double at, std::int32_t side) {
        return static_cast<std::int32_t>(std::clamp(at, 0.0, static_cast<double>(side)));
    };
    const std::int32_t x0 = clamped(std::floor(seen.x0 - windowMargin), window.width);
    const std::int32_t y0 = clamped(std::floor(seen.y0 - windowMargin), window.height);
    return {x0, y0, clamped(std::ceil(seen.x1 + windowMargin), window.width) - x0,
            clamped(std::ceil(seen.y1 + windowMargin), window.height) - y0};
}

}  // namespace

void SceneChanges::AddArea(const FrameArea& area) { m_area = Union(m_area, area); }

FrameArea Union(const FrameArea& one, const FrameArea& other) {
    if (one.IsEmpty()) return other;
    if (other.IsEmpty()) return one;
    const std::int32_t x = std::min(one.x, other.x);
    const std::int32_t y = std::min(one.y, other.y);
    return {x, y, std::max(one.x + one.width, other.x + other.width) - x,
            std::max(one.y + one.height, other.y + other.height) - y};
}

bool FindSeenArea(const ImageObject& image, const UploadedPart& part, const Placement& placement, FrameArea window,
                  FrameArea& seen) {
    seen = {};
    const Matrix texture = ReadMatrix(GL_TEXTURE_MATRIX);
    const TextureMap map(texture);
    if (image.mipmaps || !map.IsInvertible()) return false;
    const double halfWidth = placement.size[0] / 2;
    const double halfHeight = placement.size[1] / 2;
    const Bounds shown = ShownBy(map, image, part.area, {-halfWidth, -halfHeight, halfWidth, halfHeight});
    if (shown.IsEmpty()) return true;
    Bounds projected;
    if (!Project(shown, window, projected) || projected.IsEmpty()) return false;
    seen = Within(window, projected);
    return true;
}

}  // namespace kel
