#include "telestrator/journal/journal_record.h"

#include <charconv>
#include <type_traits>
#include <utility>

#include "telestrator/journal/journal_words.h"

namespace chalkpane {
namespace {

using namespace journal_text;

bool IsPaintedBy(const PaintStep& step, const HandSample& sample) {
    return static_cast<std::size_t>(step.stage) == static_cast<std::size_t>(sample.event) && step.at.x == sample.at.x &&
           step.at.y == sample.at.y && step.pressure == sample.pressure;
}

// True: the steps are the hand's samples one by one.
bool IsOfHand(const InkStroke& stroke) {
    std::size_t next = 0;
    for (const HandSample& sample : stroke.hand) {
        if (sample.event == HandEvent::Lift) continue;
        if (next == stroke.steps.size() || !IsPaintedBy(stroke.steps[next], sample)) return false;
        ++next;
    }
    return next == stroke.steps.size() && stroke.finishedFrom == next;
}

class RecordWriter {
public:
    void Word(std::string_view word) {
        if (!text_.empty()) text_ += ' ';
        text_ += word;
    }

    // As short as it can be read back exactly.
    template <typename Number>
    void Value(Number number) {
        if constexpr (std::is_same_v<Number, bool>) {
            Word(number ? "1" : "0");
        } else if constexpr (std::is_enum_v<Number>) {
            Value(static_cast<std::underlying_type_t<Number>>(number));
        } else {
            std::array<char, 32> digits{};
            const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
            Word({digits.data(), static_cast<std::size_t>(end - digits.data())});
        }
    }

    // Where it lies, then the hand, then what came of it if that is something else.
    void Stroke(const InkStroke& stroke) {
        constexpr Rect canvas(0, 0, canvasSize - 1, canvasSize - 1);
        const Rect bounds = InkBounds(stroke, canvas);
        Word(StrokeFormNames[static_cast<std::size_t>(stroke.form)]);
        for (const std::int32_t side : {bounds.x0, bounds.y0, bounds.x1, bounds.y1}) Value(side);
        const bool isOfHand = IsOfHand(stroke);
        Hand(stroke, isOfHand);
        if (!isOfHand) Steps(stroke);
        Word(endWord);
    }

    [[nodiscard]] std::string Take() { return std::move(text_); }

private:
    static constexpr std::uint32_t none = 0xFFFFFFFFU;

    void Hand(const InkStroke& stroke, bool withBrushes) {
        std::size_t step = 0;
        brush_ = none;
        std::uint32_t settings = none;
        for (const HandSample& sample : stroke.hand) {
            if (sample.settings != std::exchange(settings, sample.settings)) Settings(stroke.settings[settings]);
            const bool isLift = sample.event == HandEvent::Lift;
            if (withBrushes && !isLift) Brush(stroke, stroke.steps[step++].brush);
            Word(handWords[static_cast<std::size_t>(sample.event)]);
            Value(sample.field);
            if (!isLift) Place(sample.at, sample.pressure);
        }
        if (settings + 1 < stroke.settings.size()) Settings(stroke.settings.back());
    }

    void Steps(const InkStroke& stroke) {
        Word(insteadWord);
        brush_ = none;
        for (std::size_t i = 0; i < stroke.steps.size(); ++i) {
            const PaintStep& step = stroke.steps[i];
            if (i == stroke.finishedFrom) Word(becameWord);
            Brush(stroke, step.brush);
            Word(stepWords[static_cast<std::size_t>(step.stage)]);
            Place(step.at, step.pressure);
        }
    }

    void Settings(const HandSettings& settings) {
        Word(settingsWord);
        VisitSettings(settings.settings, [this](auto number) { Value(number); });
        Value(settings.aspect);
    }

    void Brush(const InkStroke& stroke, std::uint32_t index) {
        if (index == std::exchange(brush_, index)) return;
        const InkBrush& brush = stroke.brushes[index];
        Word(brushWords[brush.erases ? 1 : 0]);
        Value(brush.radius);
        for (const std::uint16_t part : {brush.colour.red, brush.colour.green, brush.colour.blue}) Value(part);
    }

    void Place(const CanvasPosition& at, double pressure) {
        Value(at.x);
        Value(at.y);
        Value(pressure);
    }

    std::string text_;
    std::uint32_t brush_ = none;  // the one written last
};

}  // namespace

InkDrawing::Outcome Apply(const JournalRecord& record, InkDrawing& drawing) {
    switch (record.kind) {
        case RecordKind::Stroke:
            if (record.number != drawing.NextNumber()) return {};
            return drawing.Add(record.strokes.front(), InkDrawing::OnCanvas::NotYet);
        case RecordKind::Move:
        case RecordKind::Recolour:
            return drawing.Replace(record.number, record.strokes.front());
        case RecordKind::Remove:
            return drawing.Remove(record.number);
        case RecordKind::Clear:
            return drawing.Clear();
        case RecordKind::Undo:
            return drawing.Undo();
        case RecordKind::Redo:
            return drawing.Redo();
        case RecordKind::Recall:
            return drawing.Insert(record.strokes, record.recall);
    }
    return {};
}

std::string RecordText(const JournalRecord& record) {
    RecordWriter writer;
    writer.Value(record.field);
    writer.Word(recordWords[static_cast<std::size_t>(record.kind)]);
    if (HasNumber(record.kind)) writer.Value(record.number);
    if (HasStroke(record.kind)) writer.Stroke(*record.strokes.front());
    if (record.kind == RecordKind::Recall) {
        writer.Word(recallWords[static_cast<std::size_t>(record.recall)]);
        writer.Value(record.strokes.size());
        for (const SharedStroke& stroke : record.strokes) writer.Stroke(*stroke);
    }
    return writer.Take();
}

}  // namespace chalkpane
