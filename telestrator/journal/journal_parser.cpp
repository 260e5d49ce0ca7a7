#include <charconv>
#include <cmath>
#include <limits>
#include <type_traits>

#include "telestrator/journal/journal_record.h"
#include "telestrator/journal/journal_words.h"
#include "telestrator/surface_pen.h"

namespace chalkpane {
namespace {

using namespace journal_text;

// No hand comes near them; a recognised ellipse under the thinnest brush has some 200,000 steps.
constexpr std::size_t mostSteps = 1000000;
constexpr std::size_t mostRecalled = 100000;
constexpr std::int64_t lastField = std::int64_t{1} << 53;

// What is wrong with a line.
struct Fault {
    std::string text;
};

// The words of a line, one by one. Throws Fault.
class WordReader {
public:
    explicit WordReader(std::string_view line) : rest_(line) {}

    // Empty at the end of the line.
    std::string_view Peek() const { return rest_.substr(0, rest_.find(' ')); }
    std::string_view Take() {
        const std::string_view word = Peek();
        rest_.remove_prefix(word.size());
        if (!rest_.empty()) rest_.remove_prefix(1);
        ++taken_;
        return word;
    }
    bool Skip(std::string_view word) {
        if (Peek() != word) return false;
        Take();
        return true;
    }

    [[noreturn]] void Refuse(std::string_view word, std::string_view wanted) const {
        constexpr std::size_t longest = 40;
        throw Fault{"word " + std::to_string(taken_) + ", \"" + std::string(word.substr(0, longest)) + "\", is not " +
                    std::string(wanted)};
    }

    template <typename Number>
    Number Value(Number least, Number most, std::string_view wanted) {
        const std::string_view word = Take();
        Number number{};
        const auto [end, failure] = std::from_chars(word.data(), word.data() + word.size(), number);
        const bool isRead = failure == std::errc() && end == word.data() + word.size();
        if (!isRead || !(number >= least && number <= most)) Refuse(word, wanted);  // NaN is neither
        return number;
    }

    // The index of the word in the table.
    template <std::size_t size>
    std::size_t Choice(const std::array<std::string_view, size>& words, std::string_view wanted) {
        const std::string_view word = Take();
        const std::size_t index = IndexIn(words, word);
        if (index == size) Refuse(word, wanted);
        return index;
    }

    template <std::size_t size>
    static std::size_t IndexIn(const std::array<std::string_view, size>& words, std::string_view word) {
        std::size_t index = 0;
        while (index < size && words[index] != word) ++index;
        return index;
    }

    void RequireEnd() {
        if (!rest_.empty()) Refuse(Take(), "expected: the record is over");
    }

private:
    std::string_view rest_;
    std::size_t taken_ = 0;
};

class StrokeReader {
public:
    explicit StrokeReader(WordReader& words) : words_(words) {}

    SharedStroke Read() {
        stroke_.form = static_cast<StrokeForm>(words_.Choice(StrokeFormNames, "what a stroke can be"));
        for (int side = 0; side < 4; ++side)
            Integer("a side of the stroke's rectangle, -1 to 1023", -1, canvasSize - 1);
        while (ReadHandWord()) {
        }
        if (words_.Skip(insteadWord)) {
            ReadSteps();
        } else {
            StepsFromHand();
        }
        if (stroke_.hand.empty()) words_.Refuse(words_.Peek(), "a press: a stroke has at least one");
        if (!words_.Skip(endWord)) words_.Refuse(words_.Peek(), "a word of a stroke");
        return std::make_shared<const InkStroke>(std::move(stroke_));
    }

private:
    static constexpr std::uint32_t none = 0xFFFFFFFFU;

    std::int32_t Integer(std::string_view wanted, std::int32_t least, std::int32_t most) {
        return words_.Value<std::int32_t>(least, most, wanted);
    }

    // False: the next word is none of the hand's.
    bool ReadHandWord() {
        if (ReadBrush()) return true;
        if (words_.Skip(settingsWord)) {
            ReadSettings();
            return true;
        }
        const std::size_t event = WordReader::IndexIn(handWords, words_.Peek());
        if (event == handWords.size()) return false;
        const std::string_view word = words_.Take();
        if (stroke_.settings.empty()) words_.Refuse(word, "preceded by settings");
        if (stroke_.hand.size() == mostSteps) words_.Refuse(word, "wanted: a stroke has at most 1000000 samples");
        HandSample sample;
        sample.event = static_cast<HandEvent>(event);
        if (stroke_.hand.empty() && sample.event != HandEvent::Press) words_.Refuse(word, "a press");
        sample.field = words_.Value<std::int64_t>(0, lastField, "a field");
        sample.settings = static_cast<std::uint32_t>(stroke_.settings.size() - 1);
        if (sample.event != HandEvent::Lift) ReadPlace(sample.at, sample.pressure);
        stroke_.hand.push_back(sample);
        brushOfHand_.push_back(brush_);
        return true;
    }

    void ReadSettings() {
        if (stroke_.settings.size() == mostSteps) words_.Refuse(settingsWord, "wanted so often");
        HandSettings& settings = stroke_.settings.emplace_back();
        VisitSettings(settings.settings, [this](auto& setting) { ReadSetting(setting); });
        settings.settings.maxUndos = 0;
        settings.aspect =
            words_.Value<float>(std::numeric_limits<float>::lowest(), std::numeric_limits<float>::max(), "an aspect");
    }

    void ReadSetting(bool& setting) { setting = Integer("0 or 1", 0, 1) != 0; }
    void ReadSetting(std::uint32_t& setting) {
        setting = words_.Value<std::uint32_t>(0, 0xFFFFFFFFU, "a colour, 0 to 4294967295");
    }
    void ReadSetting(std::int32_t& setting) {
        using Limits = std::numeric_limits<std::int32_t>;
        setting = Integer("a whole number of 32 bits", Limits::min(), Limits::max());
    }
    void ReadSetting(BrushType& setting) {
        std::int32_t number = 0;
        ReadSetting(number);
        setting = static_cast<BrushType>(number);
    }

    bool ReadBrush() {
        const std::size_t kind = WordReader::IndexIn(brushWords, words_.Peek());
        if (kind == brushWords.size()) return false;
        words_.Take();
        InkBrush brush;
        brush.erases = kind == 1;
        ReadSetting(brush.radius);
        for (std::uint16_t* part : {&brush.colour.red, &brush.colour.green, &brush.colour.blue}) {
            *part = words_.Value<std::uint16_t>(0, Colour::full, "a part of a colour, 0 to 16383");
        }
        brush_ = 0;
        while (brush_ < stroke_.brushes.size() && !(stroke_.brushes[brush_] == brush)) ++brush_;
        if (brush_ == mostBrushes) words_.Refuse(brushWords[kind], "wanted: a stroke has at most 1000 brushes");
        if (brush_ == stroke_.brushes.size()) stroke_.brushes.push_back(brush);
        return true;
    }

    void ReadPlace(CanvasPosition& at, double& pressure) {
        for (double* number : {&at.x, &at.y}) {
            using Limits = std::numeric_limits<std::int32_t>;
            *number = words_.Value<double>(Limits::min(), Limits::max(), "a position on the canvas");
        }
        pressure = words_.Value<double>(0, 1, "a pressure, 0 to 1");
    }

    void StepsFromHand() {
        for (std::size_t i = 0; i < stroke_.hand.size(); ++i) {
            if (stroke_.hand[i].event != HandEvent::Lift) RequireBrush(brushOfHand_[i]);
        }
        stroke_.steps = StepsOfHand(stroke_.hand, brushOfHand_);
        stroke_.finishedFrom = stroke_.steps.size();
    }

    void ReadSteps() {
        bool isFinished = false;
        brush_ = none;
        for (;;) {
            if (ReadBrush()) continue;
            if (!isFinished && words_.Skip(becameWord)) {
                isFinished = true;
                stroke_.finishedFrom = stroke_.steps.size();
                continue;
            }
            const std::size_t stage = WordReader::IndexIn(stepWords, words_.Peek());
            if (stage == stepWords.size()) break;
            ReadStep(static_cast<StrokeStage>(stage));
        }
        if (!isFinished) stroke_.finishedFrom = stroke_.steps.size();
    }

    void ReadStep(StrokeStage stage) {
        const std::string_view word = words_.Take();
        if (stroke_.steps.size() == mostSteps) words_.Refuse(word, "wanted: a stroke has at most 1000000 steps");
        RequireBrush(brush_);
        PaintStep step;
        step.stage = stage;
        step.brush = brush_;
        ReadPlace(step.at, step.pressure);
        stroke_.steps.push_back(step);
    }

    void RequireBrush(std::uint32_t brush) const {
        if (brush == none) words_.Refuse(words_.Peek(), "preceded by a brush");
    }

    static constexpr std::size_t mostBrushes = 1000;

    WordReader& words_;
    InkStroke stroke_;
    std::uint32_t brush_ = none;
    std::vector<std::uint32_t> brushOfHand_;  // one for each sample
};

JournalRecord ReadRecord(WordReader& words) {
    JournalRecord record;
    record.field = words.Value<std::int64_t>(0, lastField, "a field");
    record.kind = static_cast<RecordKind>(words.Choice(recordWords, "what a record can be"));
    if (HasNumber(record.kind)) record.number = words.Value<std::uint32_t>(1, 0xFFFFFFFFU, "a stroke's number");
    if (HasStroke(record.kind)) record.strokes.push_back(StrokeReader(words).Read());
    if (record.kind == RecordKind::Recall) {
        record.recall = static_cast<InkDrawing::Recall>(words.Choice(recallWords, "a way to recall"));
        const auto count = words.Value<std::size_t>(0, mostRecalled, "a number of strokes, 0 to 100000");
        while (record.strokes.size() < count) record.strokes.push_back(StrokeReader(words).Read());
    }
    words.RequireEnd();
    return record;
}

}  // namespace

ParsedRecord ParseRecord(std::string_view line) {
    WordReader words(line);
    try {
        return {ReadRecord(words), {}};
    } catch (const Fault& fault) {
        return {std::nullopt, fault.text};
    }
}

}  // namespace chalkpane
