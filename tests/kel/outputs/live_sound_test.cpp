#include <doctest/doctest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "kel/outputs/live_sink.h"
#include "kel/video/sound_reader.h"
#include "tests/cli/temporary_folder.h"
#include "tests/kel/outputs/child_program.h"
#include "tests/kel/outputs/live_places.h"
#include "tests/kel/pixels.h"
#include "tests/kel/video/beating_track.h"
#include "tests/kel/video/beats_in_file.h"

// Sound beside live pictures, kept by a program of its own as it came and looked at then.

namespace kel {
namespace {

using testing::AwaitThat;
using testing::ChildProgram;

constexpr std::int32_t beatSide = 64;
constexpr double beatRate = 50;

// Keeps what it reads until it has seen so many seconds. Of pictures in whose middle it comes it learns the size from
// the next key, which is half a second away at most.
ChildProgram KeepingReader(const std::string& address, double seconds, const std::filesystem::path& file) {
    return ChildProgram({"ffmpeg",
                         "-nostdin",
                         "-loglevel",
                         "quiet",
                         "-analyzeduration",
                         "1000000",
                         "-fpsprobesize",
                         "0",
                         "-f",
                         address.starts_with("tcp://") ? "nut" : "mpegts",
                         "-i",
                         address,
                         "-t",
                         std::to_string(seconds),
                         "-c",
                         "copy",
                         "-y",
                         "-f",
                         "matroska",
                         file.string()});
}

SharedPicture PlainGrey(std::uint8_t grey) {
    return std::make_shared<const picture_io::Picture>(testing::Plain(beatSide, beatSide, {grey, grey, grey, 255}));
}

// White where there is a tone and black where there is none, half a second each.
class BeatingSink {
public:
    explicit BeatingSink(const std::string& address, View view = View::Rendered)
        : sink(PlanLive({view, address}, false)), m_view(view) {
        SinkSettings settings;
        settings.size = {beatSide, beatSide};
        settings.fieldsPerSecond = beatRate;
        sink.Open(settings);
    }
    //   isRunning  false: the picture stands, so nothing is heard
    void Feed(bool isRunning = true) {
        OutputField field;
        field.number = ++m_number;
        field.seconds = static_cast<double>(m_number) / beatRate;
        field.views[static_cast<std::size_t>(m_view)] = testing::IsBeat(field.seconds + 1e-9) ? m_white : m_black;
        field.sound = {m_track, field.seconds, isRunning};
        sink.TakeField(field);
    }

    LiveSink sink;

private:
    View m_view;
    SharedPicture m_white = PlainGrey(255);
    SharedPicture m_black = PlainGrey(0);
    std::shared_ptr<const SoundTrack> m_track = std::make_shared<testing::BeatingTrack>();
    std::int64_t m_number = -1;
};

}  // namespace

// Two fields at most: what a codec smears of a tone's begin is less than that.
TEST_CASE("Sound is sent beside the picture by every scheme, as it was, at its time") {
    const cli::testing::TemporaryFolder folder;
    for (const LiveScheme& scheme : LiveSchemes()) {
        CAPTURE(scheme.beginning);
        const testing::LivePlaces places = testing::LivePlacesOf(scheme.beginning);
        BeatingSink fed(places.sink);
        const std::string where = places.reader.empty() ? fed.sink.Figures().address : places.reader;
        ChildProgram reader = KeepingReader(where, 2.2, folder / "kept.mkv");
        AwaitThat("it is kept", [&] {
            fed.Feed();
            return !reader.IsRunning();
        });
        fed.sink.Close();
        testing::CheckBeats(folder / "kept.mkv", 2 / beatRate);
    }
}

TEST_CASE("A picture that stands is sent with silence, and views without the picture have no sound") {
    const cli::testing::TemporaryFolder folder;
    BeatingSink standing("tcp://:0");
    BeatingSink strokes("tcp://:0", View::Overlay);
    ChildProgram first = KeepingReader(standing.sink.Figures().address, 1.2, folder / "standing.mkv");
    ChildProgram second = KeepingReader(strokes.sink.Figures().address, 0.5, folder / "strokes.mkv");
    AwaitThat("both are kept", [&] {
        standing.Feed(false);
        strokes.Feed();
        return !first.IsRunning() && !second.IsRunning();
    });
    const auto sound = SoundReader::Open(folder / "standing.mkv");
    REQUIRE(sound);
    const std::vector<float> samples = testing::LeftOf(*sound);
    CHECK_GT(samples.size(), SoundSource::samplesPerSecond);
    CHECK(std::ranges::all_of(samples, [](float sample) { return sample == 0.0F; }));
    CHECK(SoundReader::Open(folder / "strokes.mkv") == nullptr);
}

}  // namespace kel
