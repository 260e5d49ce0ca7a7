#include "telestrator/journal/journal_replay.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace chalkpane {
namespace {

// Lines that became something else do not tell which brush the hand had; it follows from the settings.
InkBrush BrushOfHand(const TelestratorSettings& settings) {
    const bool erases = settings.brushType == BrushType::Eraser;
    return {erases, erases ? settings.eraserWidth : settings.brushWidth, CanvasColour(settings.brushColour)};
}

StrokeStage StageOf(HandEvent event) {
    if (event == HandEvent::Press) return StrokeStage::Begin;
    return event == HandEvent::Move ? StrokeStage::Continue : StrokeStage::End;
}

}  // namespace

JournalReplay::JournalReplay(const std::vector<JournalRecord>& records, Pace pace) : records_(records) {
    for (std::size_t i = 0; i < records_.size(); ++i) {
        if (records_[i].kind == RecordKind::Stroke) AddHand(i);
        Add(records_[i].field, {0, i, 0, false});
    }
    if (pace == Pace::Even) MakeEven();
    pen_.SetTarget(&canvas_);
}

// How hard the pen was pressed is not how the brush painted, which the steps say where they are the hand's.
void JournalReplay::AddHand(std::size_t record) {
    const InkStroke& stroke = *records_[record].strokes.front();
    const bool areSteps = stroke.finishedFrom > 0 && IsPaintedAsHand(stroke);
    std::size_t step = 0;
    for (std::size_t sample = 0; sample < stroke.hand.size(); ++sample) {
        Event event{0, record, sample, true};
        if (areSteps && stroke.hand[sample].event != HandEvent::Lift) event.pressure = stroke.steps[step++].pressure;
        Add(stroke.hand[sample].field, event);
    }
}

const HandSample* JournalReplay::SampleOf(const Event& event) const {
    return event.isHand ? &records_[event.record].strokes.front()->hand[event.sample] : nullptr;
}

// A field passes with each part of the way that is as long as the mean of those drawn in a field.
void JournalReplay::MakeEven() {
    double way = 0;           // canvas pixels
    std::int64_t fields = 0;  // with the pen on the canvas
    std::vector<double> ways;
    ways.reserve(events_.size());
    for (std::size_t i = 0; i < events_.size(); ++i) {
        const HandSample* const to = SampleOf(events_[i]);
        const HandSample* const from = i == 0 ? nullptr : SampleOf(events_[i - 1]);
        if (to != nullptr && from != nullptr && to->event != HandEvent::Press) {
            fields += events_[i].field - events_[i - 1].field;
            if (to->event != HandEvent::Lift) way += std::hypot(to->at.x - from->at.x, to->at.y - from->at.y);
        }
        ways.push_back(way);
    }
    if (!(way > 0)) return;
    const std::int64_t first = FirstField();
    for (std::size_t i = 0; i < events_.size(); ++i)
        events_[i].field = first + std::llround(ways[i] / way * static_cast<double>(fields));
}

void JournalReplay::Add(std::int64_t field, Event event) {
    event.field = std::max(field, events_.empty() ? std::int64_t{0} : events_.back().field);
    events_.push_back(event);
}

std::int64_t JournalReplay::FirstField() const { return events_.empty() ? 0 : events_.front().field; }
std::int64_t JournalReplay::LastField() const { return events_.empty() ? -1 : events_.back().field; }

Rect JournalReplay::PlayTo(std::int64_t field) {
    Rect changed;
    for (; next_ < events_.size() && events_[next_].field <= field; ++next_)
        changed = changed.Union(Play(events_[next_]));
    return changed;
}

Rect JournalReplay::PaintSample(const Event& event) {
    const InkStroke& stroke = *records_[event.record].strokes.front();
    const HandSample& hand = stroke.hand[event.sample];
    if (hand.event == HandEvent::Lift) return {};
    return pen_.Paint(BrushOfHand(stroke.settings[hand.settings].settings), StageOf(hand.event), hand.at,
                      event.pressure);
}

Rect JournalReplay::Play(const Event& event) {
    const JournalRecord& record = records_[event.record];
    if (event.isHand) {
        const Rect painted = PaintSample(event);
        hand_ = hand_.Union(painted);
        return painted;
    }
    const Rect changed = Apply(record, drawing_).changed.Union(std::exchange(hand_, Rect()));
    canvas_.CopyRegion(settled_, changed);
    return changed.Intersection(canvas_);
}

}  // namespace chalkpane
