#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "chalkpane/image/rect.h"
#include "telestrator/geometry.h"
#include "telestrator/memory_guard.h"
#include "telestrator/recognition/shape_recognition.h"
#include "telestrator/surface_pen.h"
#include "telestrator/telestrator_settings.h"
#include "telestrator/telestrator_surface.h"

namespace chalkpane {

// Width and height of every canvas, in pixels.
constexpr std::int32_t canvasSize = 1024;

// Whole-canvas copies.
using Snapshot = std::unique_ptr<std::byte[]>;
using UndoRing = std::vector<Snapshot>;

// The undo ring's greatest size, whatever the settings say.
constexpr std::int32_t undoLimit = 10;

// A picture for the brush: width * height pixels of four bytes, alpha last, borrowed for the call. Null pixels: there
// is one, but it cannot be shown as pixels.
struct BrushPicture {
    std::int32_t width = 0;
    std::int32_t height = 0;
    const std::uint8_t* pixels = nullptr;
};

// What became of the last line that was finished.
enum class StrokeResult : std::uint8_t { None, UndoGesture, Vanished, Line, Arrow, Ellipse, Circle, Cross };

// The telestrator without a host: strokes go in as canvas positions, fields tick, and a picture of 1024 x 1024 pixels
// comes out together with what changed in it.
//
//   Telestrator telestrator;
//   TelestratorSettings settings;
//   telestrator.Field(settings);                  // makes the canvas
//   telestrator.Press(settings, {100, 100});
//   telestrator.Move(settings, {200, 150});       // at most one position a field
//   telestrator.Field(settings);
//   telestrator.Release(settings, {300, 100});
//   telestrator.Commit();                         // before each picture is shown
//   ShowChange(telestrator.TakeChange(), telestrator.canvasSurface->GetPixels());
//
// Positions are canvas pixels, x rightwards and y downwards from the top left; they are not clamped, and one that an
// int cannot hold (or NaN) paints nothing. Nothing here throws but what says so. Where memory runs out the operation
// goes on without what it lacks and `memory` counts the failure. Without a canvas no operation does anything but those
// that make one. One thread; rows of the recognition run on the workers.
//
// The fields are the state. They stand open to whoever drives the telestrator, who sets `aspect` and may read all.
class Telestrator {
public:
    Telestrator() = default;
    Telestrator(const Telestrator&) = delete;
    Telestrator& operator=(const Telestrator&) = delete;
    Telestrator(Telestrator&&) = delete;
    Telestrator& operator=(Telestrator&&) = delete;
    // Frees in this order: both surfaces, stroke points, current snapshot, counters, ring.
    ~Telestrator();

    // Drawing. Each paints on the canvas and, when nothing will replace the stroke, on the shape surface, stores the
    // changed canvas pixels in `dirtyRect` and returns them. A press while the countdown runs keeps the stored points.
    Rect Press(const TelestratorSettings& settings, const CanvasPosition& position) noexcept;
    Rect Move(const TelestratorSettings& settings, const CanvasPosition& position) noexcept;
    Rect Release(const TelestratorSettings& settings, const CanvasPosition& position) noexcept;

    // One field: makes the canvas when there is none, follows the settings, and counts down to the recognition.
    // False: memory ran out for the canvas or the ring; the next field tries again.
    bool Field(const TelestratorSettings& settings) noexcept;

    // Puts a finished shape on the canvas. True: there was one, and it can be taken back from now on.
    bool Commit() noexcept;

    // What to show anew: the whole canvas when anything but a stroke changed it since the last call, else `dirtyRect`
    // within the canvas, which is not valid when that holds nothing. A dirty rectangle stays until the next stroke
    // event.
    struct Change {
        Rect rect;
        bool whole = false;
    };
    [[nodiscard]] Change TakeChange() noexcept;

    void ClearCanvas() noexcept;          // both surfaces; can itself be taken back
    void RestoreUndoSnapshot() noexcept;  // both surfaces go back by one state; with an empty ring nothing happens

    // Sets the brushes of both surfaces from the brush type, the widths and the picture; null for none.
    // False: memory ran out.
    bool ApplyBrushMode(const TelestratorSettings& settings, const BrushPicture* picture = nullptr) noexcept;

    [[nodiscard]] bool HasCanvas() const { return canvasSurface != nullptr; }

    // The parts of a field, for a host that has business of its own in between.

    // Both surfaces and the ring, without brush settings. Throws std::bad_alloc.
    void MakeSurfaces(const TelestratorSettings& settings);
    // As ApplyBrushMode. Throws std::bad_alloc.
    void ConfigureBrushes(const TelestratorSettings& settings, const BrushPicture* picture);
    // Frees surfaces, ring and current snapshot.
    void DropCanvas() noexcept;
    // Lets the ring follow the settings. False: memory ran out and the ring stays as far as it came.
    bool AdjustUndoRing(const TelestratorSettings& settings) noexcept;
    // Hands the brushes a changed width or colour; where memory ran out, the next call tries again.
    void FollowSettings(const TelestratorSettings& settings) noexcept;
    void CountDown(const TelestratorSettings& settings) noexcept;

    // Decides what becomes of a finished freehand line: a recognised shape, a smoothed line with an arrow head,
    // nothing, or, for a dab of 3 or 4 points, an undo. Draws on the shape surface and marks it to replace the canvas.
    void FinishStroke(const TelestratorSettings& settings) noexcept;

    // wanted: makes the stroke points and the counters, 76 MiB, unless they stand; otherwise frees them. The point
    // count stays either way. When memory runs out `recognitionBuffersReady` stays clear.
    void SizeRecognitionBuffers(bool wanted) noexcept;

    // Appends to the stored stroke, resampled to a spacing of about the brush's width whatever the pointer's speed.
    // Makes the recognition buffers when they are missing. Nothing happens unless shapes are recognised. Points beyond
    // the room of the buffer are dropped.
    //   force  the point itself and no resampling: the ends of a stroke
    void AddStrokePoint(const TelestratorSettings& settings, const CanvasPosition& position, bool force) noexcept;
    // What is stored, borrowed until the buffers go; empty without them.
    [[nodiscard]] std::span<Vector3> StoredStroke() const;

    // The stored stroke as the recognisers want it.
    [[nodiscard]] ShapeInput RecognitionInput(const TelestratorSettings& settings);

    // Saves the state before the last change and takes the canvas as the new one.
    void PushUndoSnapshot() noexcept;

    std::unique_ptr<TelestratorSurface> canvasSurface;  // receives the live stroke; what the operator sees
    std::unique_ptr<TelestratorSurface> shapeSurface;   // holds only finished results
    std::int32_t lastBrushWidth = -1;                   // what the brushes have
    std::int32_t lastEraserWidth = -1;
    std::uint32_t lastBrushColor = 0;
    std::int32_t canvasWidth = canvasSize;
    std::int32_t canvasHeight = canvasSize;
    Rect dirtyRect;  // what the last stroke event changed
    bool fullUploadPending = false;
    Vector3 lastStrokePoint;  // end of the resampled stroke
    bool shapeCommitPending = false;
    std::int32_t strokePointCount = 0;
    MemoryGuard memory;
    // Room for canvasWidth * canvasHeight points (x in canvas pixels, y in canvas pixels divided by `aspect`, 0): in
    // this space a unit of x is as long in the picture as a unit of y, so round things are round.
    std::unique_ptr<Vector3[]> strokePoints;
    std::int32_t shapeCountdown = -1;                   // fields until the recognition; -1 and -2: none is due
    std::int32_t undoIndex = 0;                         // the most recent state in the ring
    std::unique_ptr<UndoRing> undoRing;                 // null until there is a canvas
    Snapshot currentSnapshot;                           // the canvas as of the last commit
    std::unique_ptr<std::uint32_t[]> houghAccumulator;  // houghCounters of them
    // Width over height of what the canvas is shown on; positive and finite, or shapes are not recognised.
    float aspect = 1;
    bool recognitionBuffersReady = false;  // strokePoints and houghAccumulator exist
    StrokeResult result = StrokeResult::None;

private:
    void FollowWithDraft(const TelestratorSettings& settings) noexcept;
    void ForgetDraft() noexcept;
    void PaintStroke(const TelestratorSettings& settings, StrokeStage stage, const CanvasPosition& position) noexcept;
    // A width is the radius of a dab.
    void SetWidth(std::int32_t width, std::int32_t& lastWidth) noexcept;
    void AppendResampled(const Vector3& point, std::int32_t pointSpacing);
    void Append(const Vector3& point);
    void DrawSmoothedLine(const TelestratorSettings& settings);
    void FillUndoRing(std::int32_t size);  // throws std::bad_alloc
    void SaveIntoNextEntry();
    [[nodiscard]] std::int32_t RingSize() const;
};

}  // namespace chalkpane
