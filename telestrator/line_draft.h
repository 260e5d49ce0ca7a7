#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/composite/settled_pixels.h"
#include "telestrator/geometry.h"
#include "telestrator/telestrator_surface.h"

namespace chalkpane {

// The smoothed line of a long stroke, drawn while the pointer still moves, so that the field in which the stroke is
// finished does not have to draw minutes of it at once.
//
// It is drawn aside, on a copy of the shape surface's canvas and with the surface's own brush, whose stroke is laid
// aside meanwhile. Only what surely will be part of the line is drawn: its points stay where they are while the stroke
// grows. At the end it counts only if it is what would be drawn now, to the last byte: the same points, the same brush,
// the same canvas below. Otherwise it is forgotten, and the line is drawn as if it had never been.
//
// One thread, that of the telestrator. Where there is no memory for it there is no draft.
class LineDraft {
public:
    // A stored stroke's point of that number in its smoothed line; the line's last point is the stroke's last one.
    [[nodiscard]] static constexpr std::size_t StoredIndex(std::size_t linePoint) {
        return linePoint == 0 ? 0 : decimation * (linePoint - 1) + 1;
    }
    static constexpr std::size_t decimation = 4;
    // Shorter strokes are drawn soon enough.
    static constexpr std::size_t fewestStored = 1000;

    // Draws on by what one event is worth. stored: the stroke so far, as it was stored.
    void Follow(TelestratorSurface& surface, std::span<const Vector3> stored, float aspect) noexcept;

    // Puts the draft on the surface, tells its listener, and lets its brush go on where the draft ends. Returns how
    // many points of `line`, the smoothed stroke, are drawn by that: all but the last at most. 0: none, and nothing
    // happened. The draft is forgotten.
    std::size_t Take(TelestratorSurface& surface, std::span<const Vector3> line, float aspect) noexcept;

    // What is drawn next begins anew.
    void Forget() noexcept { drawn_.clear(); }

private:
    [[nodiscard]] bool Continues(const TelestratorSurface& surface, std::span<const Vector3> stored,
                                 float aspect) const;
    bool Begin(const TelestratorSurface& surface, std::size_t room, float aspect);
    void Draw(BasicBrush& brush, std::span<const Vector3> stored);
    [[nodiscard]] bool StandsOn(const Image& canvas) const;
    void Release() noexcept;

    std::vector<Vector3> drawn_;     // the points of the line so far; none: there is no draft
    std::unique_ptr<Image> pixels_;  // the canvas with the line on it
    std::unique_ptr<Image> below_;   // the canvas without
    std::unique_ptr<SettledPixels> closer_;
    const Image* canvas_ = nullptr;   // that this is a draft for; not owned
    BasicBrush::StrokeState stroke_;  // where the line ends
    std::uint64_t revision_ = 0;      // of the brush
    float aspect_ = 1;
};

}  // namespace chalkpane
