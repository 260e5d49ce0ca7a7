#include <doctest/doctest.h>

#include <string>
#include <vector>

#include "kel/video/sound_reader.h"
#include "kel/video/video_reader.h"
#include "kel/video/video_writer.h"
#include "tests/cli/temporary_folder.h"
#include "tests/kel/video/counted_video.h"
#include "tests/kel/video/sounding_video.h"

namespace kel {
namespace {

using cli::testing::TemporaryFolder;

// A film of four seconds, 25 frames each, with as much sound.
class SoundingFilm : public TemporaryFolder {
public:
    SoundingFilm() {
        testing::WriteCountedVideo(*this / "silent.mkv", 60, 64, 48, 15);
        testing::WriteWithSound(*this / "silent.mkv", *this / "film.mkv", 4);
    }
};

// The level of a sample at that time, as the file has it.
int LevelAt(SoundReader& sound, double seconds) {
    sound.Seek(seconds);
    std::vector<float> samples(64);
    REQUIRE_EQ(sound.Read(samples), samples.size() / SoundReader::channels);
    return static_cast<int>(samples[33] * 32768.0F + 0.5F);
}

}  // namespace

TEST_CASE("The sound of a video is heard at its time, wherever one begins") {
    const SoundingFilm film;
    const auto sound = SoundReader::Open(film / "film.mkv");
    REQUIRE(sound);
    for (const double seconds : {0.0, 0.5, 2.5, 3.2, 1.99, 0.99, 1.01}) {
        CAPTURE(seconds);
        CHECK_EQ(LevelAt(*sound, seconds), testing::LevelOfSecond(static_cast<int>(seconds)));
    }
}

TEST_CASE("Sound goes on from one read to the next, and ends where the file's does") {
    const SoundingFilm film;
    const auto sound = SoundReader::Open(film / "film.mkv");
    REQUIRE(sound);
    sound->Seek(0);
    std::vector<float> second(SoundReader::channels * SoundReader::samplesPerSecond);
    for (int number = 0; number < 4; ++number) {
        REQUIRE_EQ(sound->Read(second), SoundReader::samplesPerSecond);
        const float level = static_cast<float>(testing::LevelOfSecond(number)) / 32768.0F;
        CHECK_EQ(second == std::vector<float>(second.size(), level), true);
    }
    CHECK_EQ(sound->Read(second), 0);
    sound->Seek(100);
    CHECK_EQ(sound->Read(second), 0);
}

TEST_CASE("A video without sound, and what is none, have none") {
    const SoundingFilm film;
    cli::testing::WriteText(film / "text.mp4", "no video");
    for (const std::string name : {"silent.mkv", "text.mp4", "gone.mkv"})
        CHECK(SoundReader::Open(film / name) == nullptr);
}

TEST_CASE("A film that carries another one keeps its sound where the format can hold it, as far as it goes") {
    const SoundingFilm film;
    for (const std::string name : {"out.mkv", "out.mov", "out.mp4"}) {
        CAPTURE(name);
        VideoWriter writer(film / name, {64, 48, 15, false, film / "film.mkv"});
        for (int frame = 0; frame < 45; ++frame) writer.Write(testing::CountedFrame(frame, 64, 48));  // three seconds
        writer.Close();
        writer.Commit();
        CHECK_EQ(VideoReader(film / name).FrameCount(), 45);
        const auto sound = SoundReader::Open(film / name);
        if (name == "out.mp4") {  // which has no sound that is not compressed
            CHECK(sound == nullptr);
            continue;
        }
        REQUIRE(sound);
        for (const double seconds : {0.0, 1.5, 2.9})
            CHECK_EQ(LevelAt(*sound, seconds), testing::LevelOfSecond(static_cast<int>(seconds)));
        std::vector<float> rest(64);
        sound->Seek(3.1);
        CHECK_EQ(sound->Read(rest), 0);
    }
}

TEST_CASE("A film that carries a silent one is written without sound") {
    const SoundingFilm film;
    VideoWriter writer(film / "out.mkv", {64, 48, 15, false, film / "silent.mkv"});
    writer.Write(testing::CountedFrame(0, 64, 48));
    writer.Close();
    writer.Commit();
    CHECK(SoundReader::Open(film / "out.mkv") == nullptr);
}

}  // namespace kel
