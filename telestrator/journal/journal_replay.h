#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "chalkpane/image/image.h"
#include "telestrator/journal/ink_drawing.h"
#include "telestrator/journal/ink_painter.h"
#include "telestrator/journal/journal_record.h"

namespace chalkpane {

// Draws a journal again as it was drawn, field by field: each line grows sample by sample under its brush, becomes what
// it became, and edits happen when they happened.
//
// All that allocates may throw std::bad_alloc.
class JournalReplay {
public:
    // Even: the pen goes all its ways at one pace, its mean one, and does not pause; edits come as soon as they can.
    enum class Pace : std::uint8_t { AsDrawn, Even };
    // The records can be followed, in their order; borrowed. Times that run backwards stand still until they are
    // caught up with.
    explicit JournalReplay(const std::vector<JournalRecord>& records, Pace pace = Pace::AsDrawn);

    // The fields of the first thing that happens and of the last; 0 and -1 where nothing does.
    [[nodiscard]] std::int64_t FirstField() const;
    [[nodiscard]] std::int64_t LastField() const;

    // All that happens up to the field's end. Returns the pixels that may have changed.
    Rect PlayTo(std::int64_t field);
    // What is seen then.
    [[nodiscard]] const Image& Canvas() const { return canvas_; }

private:
    // A sample of a stroke's hand, or, behind them, what the record says.
    struct Event {
        std::int64_t field = 0;
        std::size_t record = 0;
        std::size_t sample = 0;
        bool isHand = false;
        double pressure = 1.0;  // that the sample was painted with
    };

    void AddHand(std::size_t record);
    void Add(std::int64_t field, Event event);
    [[nodiscard]] const HandSample* SampleOf(const Event& event) const;
    void MakeEven();
    Rect PaintSample(const Event& event);
    Rect Play(const Event& event);

    const std::vector<JournalRecord>& records_;
    std::vector<Event> events_;
    std::size_t next_ = 0;
    Image settled_ = NewInkCanvas();
    Image canvas_ = NewInkCanvas();
    InkDrawing drawing_{settled_};
    InkPen pen_;
    Rect hand_;  // where the stroke that is being drawn has painted so far
};

}  // namespace chalkpane
