#include "telestrator/journal/journal_file.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <new>
#include <utility>

namespace chalkpane {
namespace {

constexpr std::uintmax_t largestFile = std::uintmax_t{1} << 30;
constexpr std::size_t mostRecords = 1000000;
// Pixels of dabs. At the pace of painting it is a quarter of an hour; an hour by hand comes to a hundredth of it.
constexpr double mostWork = 1e12;

// About so many pixels are touched by the stroke's dabs, and not many more.
double WorkOf(const InkStroke& stroke) {
    double work = 0;
    CanvasPosition last;
    for (const PaintStep& step : stroke.steps) {
        const double width = std::clamp(2.0 * stroke.brushes[step.brush].radius + 1, 1.0, 2049.0);
        const double length = std::hypot(step.at.x - last.x, step.at.y - last.y);
        const double dabs = step.stage == StrokeStage::Begin ? 1 : std::min(1001.0, 1 + length / (0.15 * width));
        work += dabs * std::min(width * width, double{canvasSize} * canvasSize);
        last = step.at;
    }
    return work;
}

std::string AtLine(std::size_t line, const std::string& error) { return "line " + std::to_string(line) + ": " + error; }

// Reads line by line what the text holds whole.
class JournalReader {
public:
    explicit JournalReader(std::string_view text) : rest_(text) {}

    ReadJournal Read() {
        if (!NextLine() || line_ != journalHeader) {
            read_.error = AtLine(1, "a journal begins with \"" + std::string(journalHeader) + "\"");
            return std::move(read_);
        }
        read_.wholeBytes = taken_;
        while (NextLine()) {
            read_.error = AddRecord();
            if (!read_.error.empty()) return std::move(read_);
            read_.wholeBytes = taken_;
        }
        return std::move(read_);
    }

private:
    // False: no line is left that ends.
    bool NextLine() {
        const std::size_t end = rest_.find('\n');
        if (end == std::string_view::npos) return false;
        line_ = rest_.substr(0, end);
        rest_.remove_prefix(end + 1);
        taken_ += end + 1;
        ++number_;
        return true;
    }

    std::string AddRecord() {
        if (read_.records.size() == mostRecords) return AtLine(number_, "a journal has at most 1000000 records");
        ParsedRecord parsed = ParseRecord(line_);
        if (!parsed.record) return AtLine(number_, parsed.error);
        for (const SharedStroke& stroke : parsed.record->strokes) work_ += WorkOf(*stroke);
        if (work_ > mostWork) return AtLine(number_, "there is more to paint than a hand can draw");
        read_.records.push_back(std::move(*parsed.record));
        return {};
    }

    std::string_view rest_;
    std::string_view line_;
    std::size_t taken_ = 0;
    std::size_t number_ = 0;
    double work_ = 0;
    ReadJournal read_;
};

std::string WhyNot(const JournalRecord& record, const InkDrawing& drawing) {
    switch (record.kind) {
        case RecordKind::Stroke:
            return "stroke " + std::to_string(record.number) + " comes where stroke " +
                   std::to_string(drawing.NextNumber()) + " is next";
        case RecordKind::Undo:
            return "there is nothing to undo";
        case RecordKind::Redo:
            return "there is nothing to redo";
        case RecordKind::Clear:
        case RecordKind::Recall:
            return "nothing is recalled";
        case RecordKind::Move:
        case RecordKind::Recolour:
        case RecordKind::Remove:
            break;
    }
    return "there is no stroke " + std::to_string(record.number) + " on the canvas";
}

// apply: does a record; false where it cannot be done.
template <typename ApplyFunction>
std::string FollowWith(const std::vector<JournalRecord>& records, const InkDrawing& drawing,
                       const ApplyFunction& apply) {
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (!apply(records[i])) return AtLine(i + 2, WhyNot(records[i], drawing));
    }
    return {};
}

}  // namespace

ReadJournal ParseJournal(std::string_view text) { return JournalReader(text).Read(); }

ReadJournal ReadJournalFile(const std::filesystem::path& file) {
    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(file, failure);
    ReadJournal read;
    std::ifstream stream(file, std::ios::binary);
    if (failure || !stream) {
        read.error = "cannot be read";
    } else if (size > largestFile) {
        read.error = "is larger than 1 GiB";
    } else {
        std::string text(static_cast<std::size_t>(size), '\0');
        stream.read(text.data(), static_cast<std::streamsize>(size));
        text.resize(static_cast<std::size_t>(stream.gcount()));
        read = ParseJournal(text);
    }
    return read;
}

std::string Follow(JournaledTelestrator& telestrator, const std::vector<JournalRecord>& records) {
    return FollowWith(records, *telestrator.Drawing(),
                      [&](const JournalRecord& record) { return telestrator.Apply(record); });
}

std::string Follow(InkDrawing& drawing, const std::vector<JournalRecord>& records) {
    return FollowWith(records, drawing, [&](const JournalRecord& record) { return Apply(record, drawing).done; });
}

std::string DrawingText(const InkDrawing& drawing) {
    std::string text(journalHeader);
    text += '\n';
    JournalRecord record;
    for (const InkDrawing::Stroke& stroke : drawing.Strokes()) {
        ++record.number;
        record.strokes = {stroke.ink};
        text += RecordText(record) + '\n';
    }
    return text;
}

KeptDrawing ParseDrawing(std::string_view text) {
    const ReadJournal read = ParseJournal(text);
    KeptDrawing kept;
    kept.error = read.error;
    if (!kept.error.empty()) return kept;
    Image canvas = NewInkCanvas();
    InkDrawing drawing(canvas);
    kept.error = Follow(drawing, read.records);
    if (!kept.error.empty()) return kept;
    for (const InkDrawing::Stroke& stroke : drawing.Strokes()) kept.strokes.push_back(stroke.ink);
    return kept;
}

JournalFile::JournalFile(const std::filesystem::path& file) : name_(file.string()) {
    std::error_code failure;
    const bool isThere = std::filesystem::exists(file, failure) && std::filesystem::file_size(file, failure) > 0;
    if (isThere) {
        ReadJournal read = ReadJournalFile(file);
        if (!read.error.empty()) {
            error_ = name_ + ": " + read.error;
            return;
        }
        former_ = std::move(read.records);
        std::filesystem::resize_file(file, read.wholeBytes, failure);
    }
    file_.reset(std::fopen(name_.c_str(), "ab"));
    if (failure || !file_) {
        error_ = name_ + ": cannot be written";
        file_.reset();
    } else if (!isThere) {
        WriteLine(std::string(journalHeader));
    }
}

void JournalFile::WriteLine(const std::string& line) {
    const std::string text = line + '\n';
    const bool isWritten =
        std::fwrite(text.data(), 1, text.size(), file_.get()) == text.size() && std::fflush(file_.get()) == 0;
    if (isWritten) return;
    error_ = name_ + ": the journal cannot be written any further";
    file_.reset();
}

void JournalFile::Write(const JournalRecord& record) noexcept {
    if (!file_) return;
    try {
        WriteLine(RecordText(record));
    } catch (const std::bad_alloc&) {
        // A journal without one of its records could not be followed, so it ends before it.
        file_.reset();
    }
}

}  // namespace chalkpane
