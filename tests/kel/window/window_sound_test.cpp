#include <doctest/doctest.h>

#include <cstdlib>
#include <cstring>
#include <nlohmann/json.hpp>
#include <set>

#include "tests/kel/live/camera.h"
#include "tests/kel/video/counted_video.h"
#include "tests/kel/video/sounding_video.h"
#include "tests/kel/window/kel_window.h"

namespace kel {
namespace {

using testing::KelWindow;
using testing::WaitUntil;

// Plays into a file in the place of a device, for what is started in its lifetime.
class SoundIntoFile {
public:
    explicit SoundIntoFile(std::filesystem::path file) : m_file(std::move(file)) {
        setenv("SDL_AUDIODRIVER", "disk", 1);
        setenv("SDL_DISKAUDIOFILE", m_file.c_str(), 1);
    }
    ~SoundIntoFile() {
        unsetenv("SDL_AUDIODRIVER");
        unsetenv("SDL_DISKAUDIOFILE");
    }
    SoundIntoFile(const SoundIntoFile&) = delete;
    SoundIntoFile& operator=(const SoundIntoFile&) = delete;
    SoundIntoFile(SoundIntoFile&&) = delete;
    SoundIntoFile& operator=(SoundIntoFile&&) = delete;

    // The levels heard so far, as the film has them; silence is none.
    [[nodiscard]] std::set<int> Levels() const {
        std::set<int> levels;
        if (!std::filesystem::exists(m_file)) return levels;
        const std::string bytes = cli::testing::ReadText(m_file);
        float sample = 0;
        for (std::size_t at = 0; at + sizeof sample <= bytes.size(); at += sizeof sample) {
            std::memcpy(&sample, bytes.data() + at, sizeof sample);
            if (sample != 0) levels.insert(static_cast<int>(sample * 32768.0F + 0.5F));
        }
        return levels;
    }

private:
    std::filesystem::path m_file;
};

}  // namespace

TEST_CASE("A film is heard as it plays, second by second, and nothing else is") {
    KelWindow window;
    const SoundIntoFile sound(window.folder / "heard.raw");
    testing::WriteCountedVideo(window.folder / "silent.mkv", 60, 320, 240, 15);
    testing::WriteWithSound(window.folder / "silent.mkv", window.folder / "film.mkv", 4);
    window.Start({"film.mkv"});
    WaitUntil("two seconds are heard", [&] { return sound.Levels().size() >= 2; });
    const std::set<int> seconds{testing::LevelOfSecond(0), testing::LevelOfSecond(1), testing::LevelOfSecond(2),
                                testing::LevelOfSecond(3)};
    for (const int level : sound.Levels()) CHECK(seconds.contains(level));
}

TEST_CASE("A camera is heard as it comes") {
    KelWindow window;
    const SoundIntoFile sound(window.folder / "heard.raw");
    const std::string address = "tcp://127.0.0.1:" + std::to_string(testing::FreePort());
    const testing::Camera camera({.address = address + "?listen", .format = "nut", .level = 8000});
    window.Start({address});
    WaitUntil("it is heard", [&] { return !sound.Levels().empty(); });
    CHECK_EQ(sound.Levels(), std::set<int>{8000});
}

}  // namespace kel
