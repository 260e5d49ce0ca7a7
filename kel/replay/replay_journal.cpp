#include "kel/replay/replay_journal.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "cli/error.h"
#include "kel/outputs/output_format.h"
#include "kel/outputs/output_sink.h"
#include "kel/replay/replay_picture.h"
#include "kel/video/video_reader.h"
#include "telestrator/journal/journal_file.h"
#include "telestrator/journal/journal_replay.h"

namespace kel {
namespace {

using chalkpane::JournalRecord;
using chalkpane::JournalReplay;
using chalkpane::RecordKind;

constexpr double mostFields = 10000000;

// A picture, a video, or nothing.
class Background {
public:
    explicit Background(const std::string& path) {
        if (path.empty()) return;
        const OutputFormat* const format = FormatOfOutput(path);
        if (format != nullptr && format->medium == OutputMedium::Video) {
            m_video.emplace(path);
        } else {
            m_picture = picture_io::ReadPicture(path);
        }
    }

    [[nodiscard]] bool IsThere() const { return m_video || m_picture.width > 0; }
    [[nodiscard]] WindowSize Size() const {
        if (m_video) return {m_video->Width(), m_video->Height()};
        if (m_picture.width > 0) return {m_picture.width, m_picture.height};
        return {chalkpane::canvasSize, chalkpane::canvasSize};
    }

    // True: what lies behind the ink at that time is another picture than at the last.
    bool ShowAt(double seconds, ReplayPicture& picture) {
        const std::int64_t frame = m_video ? m_video->FrameAt(seconds) : 0;
        if (!IsThere() || frame == std::exchange(m_shown, frame)) return false;
        picture.SetBackground(m_video ? m_video->ReadFrame(frame) : m_picture);
        return true;
    }

private:
    std::optional<VideoReader> m_video;
    picture_io::Picture m_picture;
    std::int64_t m_shown = -1;
};

std::vector<JournalRecord> ReadRecords(const std::string& path) {
    chalkpane::ReadJournal read = chalkpane::ReadJournalFile(path);
    if (!read.error.empty()) throw cli::Error(path, {}, read.error);
    chalkpane::Image canvas = chalkpane::NewInkCanvas();
    chalkpane::InkDrawing drawing(canvas);
    const std::string wrong = chalkpane::Follow(drawing, read.records);
    if (!wrong.empty()) throw cli::Error(path, {}, wrong);
    if (read.records.empty()) throw cli::Error(path, {}, "nothing was drawn");
    return std::move(read.records);
}

// Which fields of the drawing are shown, and how fast.
struct Timing {
    double first = 0;  // a field of the drawing
    double pace = 1;   // fields of the drawing for each field of the output
    std::int64_t fields = 1;

    Timing(const ReplayOptions& options, const JournalReplay& replay) {
        const double rate = options.fieldsPerSecond;
        const auto begin = static_cast<double>(replay.FirstField());
        const double whole = static_cast<double>(replay.LastField()) - begin;
        const double from = std::clamp(options.from.value_or(0) * rate, 0.0, whole);
        const double to = std::clamp(options.to ? *options.to * rate : whole, from, whole);
        first = begin + from;
        pace = options.length ? (to - from) / std::max(*options.length * rate - 1, 1.0) : options.speed;
        const double wanted = pace > 0 ? std::ceil((to - from) / pace) + 1 : 1;
        if (wanted > mostFields)
            throw cli::Error(options.journal, {},
                             "takes more than 10000000 fields; --from, --to and --speed shorten it");
        fields = static_cast<std::int64_t>(wanted);
        last = begin + to;
    }

    double last = 0;

    [[nodiscard]] std::int64_t FieldAt(std::int64_t output) const {
        const double field = first + static_cast<double>(output) * pace;
        return static_cast<std::int64_t>(std::floor(std::min(field, last) + 1e-6));
    }
};

// One output of a replay, from its first field to its last.
class Replayed {
public:
    Replayed(const ReplayOptions& options, const std::string& out, picture_io::OutputFiles& files)
        : m_options(options),
          m_background(options.over),
          m_picture(m_background.Size()),
          m_sink(MakeSink(ViewFor(out), out)),
          m_files(files) {}

    // False: progress wants no more.
    bool Play(const std::vector<JournalRecord>& records, const ReplayProgress& progress) {
        JournalReplay replay(records, m_options.even ? JournalReplay::Pace::Even : JournalReplay::Pace::AsDrawn);
        const Timing timing(m_options, replay);
        m_sink->Open({m_background.Size(), m_options.fieldsPerSecond, timing.fields, &m_files});
        for (std::int64_t field = 0; field < timing.fields; ++field) {
            const double seconds = static_cast<double>(field) / m_options.fieldsPerSecond;
            const bool isLast = field + 1 == timing.fields;
            Look(replay, timing.FieldAt(field), seconds);
            if (m_sink->WantsEveryField() || isLast) Take(field, seconds);
            if (progress && !progress(field + 1, timing.fields)) return false;
        }
        m_sink->Close();
        return true;
    }
    void Commit() { m_sink->Commit(); }

private:
    // Ink alone where it can be told from what it covers.
    View ViewFor(const std::string& out) {
        const OutputFormat* const format = FormatOfOutput(out);
        m_view = !m_background.IsThere() && format != nullptr && format->hasAlpha ? View::Overlay : View::Rendered;
        return m_view;
    }

    void Look(JournalReplay& replay, std::int64_t field, double seconds) {
        const chalkpane::Rect changed = replay.PlayTo(field);
        PicturePart part = m_picture.TakeInk(replay.Canvas(), changed);
        if (m_background.ShowAt(seconds, m_picture))
            part = {0, 0, m_background.Size().width, m_background.Size().height};
        m_changed = m_changed.With(part);
        if (!m_changed.IsEmpty()) m_shown = nullptr;
    }

    void Take(std::int64_t number, double seconds) {
        if (!m_shown) m_shown = Show();
        OutputField field;
        field.number = number;
        field.seconds = seconds;
        field.views[static_cast<std::size_t>(m_view)] = m_shown;
        field.changed = std::exchange(m_changed, {});
        m_sink->TakeField(field);
    }

    [[nodiscard]] SharedPicture Show() {
        if (m_view == View::Overlay && !m_options.straight) return m_picture.SharedInk();
        return std::make_shared<const picture_io::Picture>(
            m_view == View::Rendered ? m_picture.OverBackground() : picture_io::DividedByAlpha(m_picture.Ink()));
    }

    const ReplayOptions& m_options;
    Background m_background;
    View m_view = View::Rendered;
    ReplayPicture m_picture;
    std::unique_ptr<OutputSink> m_sink;
    picture_io::OutputFiles& m_files;
    SharedPicture m_shown;  // null: has to be made
    PicturePart m_changed;  // since the sink took a field
};

// "x.mov" for stroke 3: "x-3.mov".
std::string NameFor(const std::string& out, std::uint32_t stroke) {
    const std::filesystem::path path(out);
    return (path.parent_path() / (path.stem().string() + "-" + std::to_string(stroke) + path.extension().string()))
        .string();
}

struct Part {
    std::string out;
    std::vector<JournalRecord> records;
};

// What goes into which output: all of it, or each stroke as it was drawn.
std::vector<Part> PartsOf(const ReplayOptions& options, std::vector<JournalRecord> records) {
    std::vector<Part> parts;
    if (!options.each) {
        parts.push_back({options.out, std::move(records)});
        return parts;
    }
    for (JournalRecord& record : records) {
        if (record.kind != RecordKind::Stroke) continue;
        Part& part = parts.emplace_back(Part{NameFor(options.out, record.number), {}});
        record.number = 1;
        part.records.push_back(std::move(record));
    }
    if (parts.empty()) throw cli::Error(options.journal, {}, "has no stroke");
    return parts;
}

}  // namespace

void ReplayJournal(const ReplayOptions& options, const ReplayProgress& progress) {
    picture_io::OutputFiles files;
    files.AnnounceInput(options.journal);
    if (!options.over.empty()) files.AnnounceInput(options.over);
    std::vector<std::unique_ptr<Replayed>> outputs;
    for (const Part& part : PartsOf(options, ReadRecords(options.journal))) {
        outputs.push_back(std::make_unique<Replayed>(options, part.out, files));
        if (!outputs.back()->Play(part.records, progress)) return;
    }
    files.Commit();
    for (const auto& output : outputs) output->Commit();
}

}  // namespace kel
