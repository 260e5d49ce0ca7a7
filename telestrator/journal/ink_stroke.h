#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "chalkpane/image/rect.h"
#include "chalkpane/parameters/colour.h"
#include "telestrator/geometry.h"
#include "telestrator/journal/stroke_form.h"
#include "telestrator/telestrator_settings.h"
#include "telestrator/telestrator_surface.h"

namespace chalkpane {

// A stroke as data: what the hand did, and what is on the canvas because of it. Positions are canvas pixels.
//
// A stroke begins with a press. It ends with its release or, where lines are recognised, with what became of it;
// presses that join it before that belong to it, so a cross of two lines is one stroke.

// What a brush was set to when it painted.
struct InkBrush {
    bool erases = false;
    std::int32_t radius = 5;  // canvas pixels
    Colour colour;

    friend bool operator==(const InkBrush&, const InkBrush&) = default;
};

// One step that a brush was given.
struct PaintStep {
    StrokeStage stage = StrokeStage::Begin;
    CanvasPosition at;
    double pressure = 1.0;    // 0.0 .. 1.0
    std::uint32_t brush = 0;  // index into the stroke's brushes
};

// What the operator had set when the hand did something.
struct HandSettings {
    TelestratorSettings settings;
    float aspect = 1;

    friend bool operator==(const HandSettings&, const HandSettings&) = default;
};

enum class HandEvent : std::uint8_t {
    Press,
    Move,
    Release,
    Lift,  // a release at a position that nothing can be painted at
};

struct HandSample {
    HandEvent event = HandEvent::Press;
    std::int64_t field = 0;      // whose picture shows it, from the start of the journal
    CanvasPosition at;           // of a lift: without meaning
    double pressure = 1.0;       // of the pen, 0.0 .. 1.0; the telestrator paints at full pressure whatever it is
    std::uint32_t settings = 0;  // index into the stroke's settings
};

struct InkStroke {
    StrokeForm form = StrokeForm::Raw;
    std::vector<HandSettings> settings;  // in the order in which they came; the last is what the stroke ended with
    std::vector<HandSample> hand;
    std::vector<InkBrush> brushes;
    std::vector<PaintStep> steps;  // what the canvas shows of it, and all that it takes to paint it again
    std::size_t finishedFrom = 0;  // the steps from here on are what it became; those before were painted by the hand

    [[nodiscard]] bool IsFinished() const { return form != StrokeForm::Raw; }
};

using SharedStroke = std::shared_ptr<const InkStroke>;

// True: some of its ink has a colour, so it can be given another.
[[nodiscard]] bool HasColour(const InkStroke& stroke);

// A rectangle within `canvas` that holds all pixels the stroke changes there, and some more; not valid when there are
// none.
[[nodiscard]] Rect InkBounds(const InkStroke& stroke, const Rect& canvas);

// The steps that the hand's samples are when each is painted with the brush of that index; for lifts none.
[[nodiscard]] std::vector<PaintStep> StepsOfHand(const std::vector<HandSample>& hand,
                                                 const std::vector<std::uint32_t>& brushes);

// The stroke as it had been with the hand so much further right and down. What it became is found
// anew there. Throws std::bad_alloc.
[[nodiscard]] InkStroke Moved(const InkStroke& stroke, double right, double down);
// True: what was painted before the stroke became something is what the hand did, step for sample, or nothing.
[[nodiscard]] bool IsPaintedAsHand(const InkStroke& stroke);
// The same as Moved with the hand at any other places, one for each of its samples; a lift's has no meaning. For
// strokes that are painted as the hand. Throws std::bad_alloc.
[[nodiscard]] InkStroke Redrawn(const InkStroke& stroke, const std::vector<CanvasPosition>& hand);

// The stroke in another colour: four bytes in memory order red, green, blue, alpha, as the settings have it.
[[nodiscard]] InkStroke Recoloured(const InkStroke& stroke, std::uint32_t colour);

}  // namespace chalkpane
