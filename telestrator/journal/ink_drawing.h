#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "chalkpane/image/image.h"
#include "chalkpane/image/rect.h"
#include "telestrator/journal/ink_checkpoints.h"
#include "telestrator/journal/ink_painter.h"
#include "telestrator/journal/ink_stroke.h"

namespace chalkpane {

// A drawing as the list of its strokes, kept together with the canvas that shows them.
//
// Strokes are numbered from 1 in the order in which they came and keep their numbers. Every edit can be undone, to any
// depth, and redone until another edit is made. After each of them the canvas has the bytes that painting all strokes
// that are there, in their order, on a blank canvas would give; only what the edit touches is painted.
//
// All that allocates may throw std::bad_alloc; the edit has then been made or not, and `Repaint` of the whole canvas
// brings it in step.
class InkDrawing {
public:
    // What an edit did: the pixels that may have changed, and the number of the stroke that came first with it.
    struct Outcome {
        bool done = false;  // false: there was nothing to do, and nothing was done
        Rect changed;       // not valid: no pixel
        std::uint32_t number = 0;
    };

    enum class OnCanvas { Already, NotYet };

    struct Stroke {
        std::uint32_t number = 0;
        SharedStroke ink;
        Rect bounds;
    };

    // The canvas is borrowed, blank, and of 8-bit premultiplied colour. It is this drawing's to paint on; what else
    // paints there tells so by `Add`, or is gone with `Repaint`.
    explicit InkDrawing(Image& canvas) : canvas_(&canvas) {}

    Outcome Add(SharedStroke stroke, OnCanvas onCanvas);
    Outcome Remove(std::uint32_t number);
    // Another stroke in the place of that one, under its number: moved, or recoloured.
    Outcome Replace(std::uint32_t number, SharedStroke stroke);
    Outcome Clear();
    enum class Recall { Over, InPlace };
    // Several at once, numbered in their order; as one edit, over what is there or in its place.
    Outcome Insert(const std::vector<SharedStroke>& strokes, Recall recall);
    Outcome Undo();
    Outcome Redo();

    // The canvas within the rectangle once more from the strokes.
    void Repaint(const Rect& region);

    // Those that are there and no clearing took away, first to last.
    [[nodiscard]] std::vector<Stroke> Strokes() const;
    [[nodiscard]] bool IsBlank() const;  // true: there are none
    // Null: there is no such stroke on the canvas now.
    [[nodiscard]] SharedStroke Find(std::uint32_t number) const;
    // The stroke whose ink is nearest to the position, the later one of two; none within so many canvas pixels.
    [[nodiscard]] std::optional<std::uint32_t> Nearest(const CanvasPosition& at, double within) const;
    // The number that the next stroke gets.
    [[nodiscard]] std::uint32_t NextNumber() const { return nextNumber_; }
    [[nodiscard]] bool CanUndo() const { return done_ > 0; }
    [[nodiscard]] bool CanRedo() const { return done_ < edits_.size(); }
    [[nodiscard]] const InkCheckpoints& Checkpoints() const { return checkpoints_; }

private:
    // A stroke's, or a clearing's, place in the order. Without ink it is not there.
    struct Look {
        SharedStroke ink;
        bool clears = false;

        [[nodiscard]] bool IsThere() const { return clears || ink != nullptr; }
    };
    struct Entry {
        std::uint32_t number = 0;  // 0: a clearing
        Look look;
        Rect bounds;
    };
    struct Change {
        std::size_t entry = 0;
        Look before;
        Look after;
    };
    using Edit = std::vector<Change>;

    [[nodiscard]] Rect BoundsOf(const Look& look) const;
    [[nodiscard]] const Entry* FindEntry(std::uint32_t number) const;
    [[nodiscard]] std::size_t FirstInSight() const;
    Look& AppendTo(Edit& edit, std::uint32_t number);
    void DropUndone();
    Outcome Make(Edit edit, OnCanvas onCanvas);
    Outcome Show(const Edit& edit, Look Change::*look);
    void RepaintFrom(std::size_t firstChanged, const Rect& region);
    void PaintEntry(const Entry& entry, const Rect& region);
    void RenewCheckpoint(std::size_t entries, const Rect& region);
    [[nodiscard]] bool IsPainted(std::size_t first, std::size_t last, const Rect& area) const;

    Image* canvas_;  // not owned
    std::vector<Entry> entries_;
    std::vector<Edit> edits_;  // the first `done_` are in force, the others were undone
    std::size_t done_ = 0;
    std::uint32_t nextNumber_ = 1;
    InkCheckpoints checkpoints_;
    InkPainter painter_;
};

}  // namespace chalkpane
