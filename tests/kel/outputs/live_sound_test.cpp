#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>
#include <vector>

#include "kel/outputs/live_sink.h"
#include "kel/video/sound_reader.h"
#include "kel/video/video_reader.h"
#include "tests/cli/temporary_folder.h"
#include "tests/kel/outputs/child_program.h"
#include "tests/kel/outputs/live_places.h"
#include "tests/kel/pixels.h"
#include "tests/kel/video/beating_track.h"

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

std::vector<float> LeftOf(SoundSource& sound) {
    std::vector<float> both(std::size_t{10} * SoundSource::samplesPerSecond * SoundSource::channels);
    sound.Seek(0);
    const std::size_t count = sound.Read(both);
    std::vector<float> left;
    for (std::size_t i = 0; i < count; ++i) left.push_back(both[SoundSource::channels * i]);
    return left;
}

double BeatSeconds(std::size_t sample) { return static_cast<double>(sample) / SoundSource::samplesPerSecond; }

// When tones begin: what is loud after a tenth of a second of what is not.
std::vector<double> TonesIn(const std::vector<float>& samples) {
    constexpr float loud = 0.1F;
    std::vector<double> begins;
    std::size_t last = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (std::abs(samples[i]) < loud) continue;
        if (BeatSeconds(i - last) > 0.1) begins.push_back(BeatSeconds(i));
        last = i;
    }
    return begins;
}

// Of the fifth of a second from then on: how often it rises through zero.
double FrequencyAt(const std::vector<float>& samples, double seconds) {
    const auto begin = static_cast<std::size_t>(seconds * SoundSource::samplesPerSecond);
    const std::size_t count = SoundSource::samplesPerSecond / 5;
    REQUIRE_LE(begin + count, samples.size());
    int rises = 0;
    for (std::size_t i = begin + 1; i < begin + count; ++i) rises += samples[i - 1] < 0 && samples[i] >= 0 ? 1 : 0;
    return rises * 5;
}

// When the pictures become white.
std::vector<double> WhitesIn(const std::filesystem::path& file) {
    VideoReader video(file);
    const std::vector<double> starts = video.UnevenStarts();
    std::vector<double> begins;
    bool wasWhite = true;
    for (std::int64_t frame = 0; frame < video.FrameCount(); ++frame) {
        const bool isWhite = video.ReadFrame(frame).At(beatSide / 2, beatSide / 2)[0] > 128;
        const double start = starts.empty() ? static_cast<double>(frame) : starts[static_cast<std::size_t>(frame)];
        if (isWhite && !wasWhite) begins.push_back(start / video.FramesPerSecond());
        wasWhite = isWhite;
    }
    return begins;
}

// The way of the one that is nearest.
double DistanceFrom(double time, const std::vector<double>& others) {
    double nearest = 1000;
    for (const double other : others) nearest = std::min(nearest, std::abs(time - other));
    return nearest;
}

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
        const auto sound = SoundReader::Open(folder / "kept.mkv");
        REQUIRE(sound);
        const std::vector<float> samples = LeftOf(*sound);
        const std::vector<double> tones = TonesIn(samples);
        const std::vector<double> whites = WhitesIn(folder / "kept.mkv");
        REQUIRE_FALSE(tones.empty());
        REQUIRE_FALSE(whites.empty());
        for (const double white : whites)
            if (white + 0.1 < BeatSeconds(samples.size()))  // the one may be kept for longer than the other
                CHECK_LE(DistanceFrom(white, tones), 2 / beatRate);
        // One in a hundred: the fifth of a second has two hundred turns, and the ends may cut one each.
        CHECK_EQ(FrequencyAt(samples, tones.front() + 0.1), doctest::Approx(testing::toneOfBeat).epsilon(0.01));
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
    const std::vector<float> samples = LeftOf(*sound);
    CHECK_GT(samples.size(), SoundSource::samplesPerSecond);
    CHECK(std::ranges::all_of(samples, [](float sample) { return sample == 0.0F; }));
    CHECK(SoundReader::Open(folder / "strokes.mkv") == nullptr);
}

}  // namespace kel
