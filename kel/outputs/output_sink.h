#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kel/scene/host.h"
#include "kel/video/picture_part.h"
#include "kel/video/sound_source.h"
#include "picture_io/output_files.h"
#include "picture_io/picture.h"

namespace kel {

// What can be seen of a field.
enum class View : std::uint8_t {
    Rendered,  // the picture as the window shows it
    Overlay,   // the drawings alone, with alpha
    Fill,      // the overlay's colours, opaque
    Key,       // the overlay's alpha as grey
    Canvas,    // the module's own surface, not as it is seen
    FillKey,   // fill at the left and key at the right, in one picture of twice the width
};
constexpr std::size_t viewCount = 6;

// Never changed once it is there, so that sinks may keep it, also on other threads.
using SharedPicture = std::shared_ptr<const picture_io::Picture>;

// One field, as a sink is given it.
struct OutputField {
    std::int64_t number = 0;  // from 0
    double seconds = 0.0;     // its time stamp, since field 0
    // Those that the sink asked for; the others may be null. The very picture of the field before: nothing changed.
    std::array<SharedPicture, viewCount> views;
    // Where they may differ from the field before, for whoever knows, and then says it of every field.
    std::optional<PicturePart> changed = {};
    SoundMoment sound = {};  // what is heard with the rendered picture

    [[nodiscard]] const SharedPicture& Of(View view) const { return views[static_cast<std::size_t>(view)]; }
};

struct SinkSettings {
    WindowSize size;  // pixels, of every view but the last two
    double fieldsPerSecond = 0.0;
    std::int64_t fields = 1;                   // how many are expected; more may come
    picture_io::OutputFiles* files = nullptr;  // borrowed; knows all files of the run, and commits those staged in it
    std::filesystem::path source = {};  // the video that rendered pictures carry, whose sound is kept; empty: none
};

// A place that fields go to: a picture, numbered pictures, a video, a pair of fill and key, or what else can take them.
//
// Open, then TakeField for each field, then Close, then Commit. A sink that is destroyed before Commit abandons what it
// has and leaves nothing behind. Everything throws Error, one line with the name and the reason; after that only the
// destructor may be called. One thread at a time.
class OutputSink {
public:
    OutputSink() = default;
    virtual ~OutputSink() = default;
    OutputSink(const OutputSink&) = delete;
    OutputSink& operator=(const OutputSink&) = delete;
    OutputSink(OutputSink&&) = delete;
    OutputSink& operator=(OutputSink&&) = delete;

    [[nodiscard]] virtual std::vector<View> Views() const = 0;
    [[nodiscard]] virtual bool WantsEveryField() const = 0;  // false: it is given the last one alone
    [[nodiscard]] virtual bool IsLive() const = 0;           // true: it can follow in real time

    virtual void Open(const SinkSettings& settings) = 0;
    virtual void TakeField(const OutputField& field) = 0;
    virtual void Close() = 0;   // writes the end; a full disk shows here at the latest
    virtual void Commit() = 0;  // gives the closed file its name
};

// The sink that the path asks for by its ending and its number. Throws Error when there is none, and when it cannot
// keep the view's alpha.
[[nodiscard]] std::unique_ptr<OutputSink> MakeSink(View view, const std::string& path);

// True: the path has a number such as %05d, one file for each field.
[[nodiscard]] bool IsNumberedName(const std::string& path);

}  // namespace kel
