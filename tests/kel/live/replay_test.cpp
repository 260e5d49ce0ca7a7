#include <doctest/doctest.h>

#include <algorithm>
#include <vector>

#include "kel/live/clip_file.h"
#include "kel/live/held_packets.h"
#include "kel/live/live_source.h"
#include "kel/video/packet_sound.h"
#include "kel/video/sound_reader.h"
#include "kel/video/video_file.h"
#include "kel/video/video_reader.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"
#include "tests/kel/live/camera.h"
#include "tests/kel/outputs/child_program.h"
#include "tests/kel/video/beats_in_file.h"
#include "tests/kel/video/counted_video.h"

namespace kel {
namespace {

constexpr std::int32_t width = 64;
constexpr std::int32_t height = 48;

// What a ring would hold of a file, each packet copied and timed as there.
PacketRing::Held HeldOf(const std::filesystem::path& file) {
    VideoFile video(file);
    PacketRing::Held held;
    held.codec = CopyCodec(video.Codec());
    const AvPacket packet = NewPacket();
    while (video.Read(*packet))
        held.packets.push_back(CopyPacket(*packet, av_rescale_q(packet->dts, video.TimeBase(), liveUnit),
                                          av_rescale_q(packet->pts, video.TimeBase(), liveUnit)));
    return held;
}

std::vector<std::int64_t> NumbersIn(VideoReader& video) {
    std::vector<std::int64_t> numbers;
    for (std::int64_t frame = 0; frame < video.FrameCount(); ++frame)
        numbers.push_back(testing::NumberOf(video.ReadFrame(frame)));
    return numbers;
}

std::vector<std::int64_t> FromTo(std::int64_t first, std::int64_t last) {
    std::vector<std::int64_t> numbers;
    for (std::int64_t number = first; number <= last; ++number) numbers.push_back(number);
    return numbers;
}

}  // namespace

TEST_CASE("What is held of a stream is a video of which every frame can be sought") {
    const cli::testing::TemporaryFolder folder;
    testing::WriteCountedVideo(folder / "counted.mp4", 60, width, height);
    VideoReader video(std::make_unique<HeldPackets>("held", HeldOf(folder / "counted.mp4"), 25));
    CHECK_EQ(video.FramesPerSecond(), doctest::Approx(25));
    CHECK_EQ(NumbersIn(video), FromTo(0, 59));
    for (const std::int64_t frame : {59, 3, 55, 54, 10, 0}) CHECK_EQ(testing::NumberOf(video.ReadFrame(frame)), frame);
}

TEST_CASE("A clip has the packets as they came, from the key before its first frame on") {
    const cli::testing::TemporaryFolder folder;
    testing::WriteCountedVideo(folder / "counted.mp4", 60, width, height);
    const PacketRing::Held held = HeldOf(folder / "counted.mp4");
    // A picture at each of a frame's 40 milliseconds; the encoder chooses its keys.
    std::int64_t key = 0;
    for (const LivePacket& packet : held.packets)
        if (const std::int64_t frame = (packet->pts - held.packets[0]->pts) / 40'000;
            (packet->flags & AV_PKT_FLAG_KEY) != 0 && frame <= 52)
            key = frame;
    CHECK_EQ(WriteClip(held, {52, 57, width, height}, folder / "clip.mkv"), 52 - key);
    VideoReader clip(folder / "clip.mkv");
    const std::vector<std::int64_t> numbers = NumbersIn(clip);
    const std::vector<std::int64_t> wanted = FromTo(key, 57);
    REQUIRE_GE(numbers.size(), wanted.size());  // others may be needed to make the last ones
    CHECK(std::equal(wanted.begin(), wanted.end(), numbers.begin()));
    CHECK_EQ(clip.FramesPerSecond(), doctest::Approx(25).epsilon(0.01));
    const PacketRing::Held written = HeldOf(folder / "clip.mkv");
    REQUIRE_FALSE(written.packets.empty());
    for (const LivePacket& packet : written.packets) {
        const auto isSame = [&](const LivePacket& came) {
            return std::equal(came->data, came->data + came->size, packet->data, packet->data + packet->size);
        };
        CHECK(std::ranges::any_of(held.packets, isSame));
    }
    CHECK_EQ(WriteClip(held, {0, 59, width, height}, folder / "all.mkv"), 0);
    VideoReader all(folder / "all.mkv");
    CHECK_EQ(all.FrameCount(), 60);
}

TEST_CASE("A clip of a stream that says at its keys what a file says at its beginning can be read") {
    const cli::testing::TemporaryFolder folder;
    const std::string address = "tcp://127.0.0.1:" + std::to_string(testing::FreePort());
    const testing::Camera camera({.address = address + "?listen", .codec = "libx264", .grey = 90});
    LiveSource source(ParseLiveName(address));
    testing::Await("a third of a second", [&] { return source.Ring().Size().seconds > 0.3; });
    LiveSource::Replay replay = source.HoldReplay();
    const std::int64_t frames = replay.video.FrameCount();
    CHECK_GT(frames, 12);  // 50 a second
    CHECK_EQ(WriteClip(replay.held, {0, frames - 1, width, height}, folder / "clip.mkv"), 0);
    VideoReader clip(folder / "clip.mkv");
    CHECK_EQ(clip.FrameCount(), frames);
    CHECK_EQ(clip.ReadFrame(frames - 1), replay.video.ReadFrame(frames - 1));
    CHECK_LE(std::abs(clip.ReadFrame(0).At(30, 20)[0] - testing::ShownGrey(90)), 4);
}

TEST_CASE("A clip that cannot be written says why, and leaves nothing") {
    const cli::testing::TemporaryFolder folder;
    testing::WriteCountedVideo(folder / "counted.mp4", 5, width, height);
    const PacketRing::Held held = HeldOf(folder / "counted.mp4");
    const std::string refusal = cli::testing::Thrown([&] { (void)WriteClip(held, {0, 4, 0, 0}, folder / "clip.mkv"); });
    CHECK_NE(refusal.find("clip.mkv: cannot be written: "), std::string::npos);
    CHECK_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1);
}

TEST_CASE("Of a ring in which nothing is held there is no replay") {
    const PacketRing ring({60, 1U << 20U});
    CHECK_EQ(cli::testing::Thrown([&] { const HeldPackets held("srt://camera:9000", ring.Hold(), 25); }),
             "srt://camera:9000: nothing is kept yet");
}

TEST_CASE("The sound of live pictures is kept with them, and a clip has it as it came") {
    constexpr std::int16_t level = 8000;
    const cli::testing::TemporaryFolder folder;
    const int port = testing::FreePort();
    const std::string address = "tcp://127.0.0.1:" + std::to_string(port);
    const testing::Camera camera({.address = address + "?listen", .format = "nut", .level = level});
    LiveSource source(ParseLiveName(address));
    testing::Await("a second and a half", [&] { return source.Ring().Size().seconds > 1.5; });
    std::int64_t number = 0;
    LiveCodec codec;
    const std::vector<LivePacket> packets = source.Ring().TakeSound(number, codec);
    REQUIRE_FALSE(packets.empty());
    CHECK(source.Ring().TakeSound(number, codec).size() < packets.size());  // the same are not taken twice
    PacketSound decoder(*codec);
    std::vector<float> samples;
    decoder.Decode(*packets.front(), samples);
    CHECK_EQ(samples.size(), 2 * 960);
    CHECK_EQ(samples.front(), static_cast<float>(level) / 32768);

    const PacketRing::Held held = source.HoldReplay().held;
    CHECK_LE(held.packets.front()->pts, held.sound.front()->pts);
    (void)WriteClip(held, {20, 39, width, height}, folder / "clip.mkv");
    const auto sound = SoundReader::Open(folder / "clip.mkv");
    REQUIRE(sound);
    std::vector<float> heard(2 * 48000);
    const std::size_t count = sound->Read(heard);
    // Twenty pictures of a fiftieth of a second each, and what is needed before the first of them.
    CHECK_GE(count, 20 * 960 - 3 * 960);
    // But for the silence until the first of it, which is less than three pictures long.
    const auto end = heard.begin() + static_cast<std::ptrdiff_t>(2 * count);
    const auto begin = std::find(heard.begin(), end, static_cast<float>(level) / 32768);
    CHECK_LT(begin - heard.begin(), 2 * 3 * 960);
    CHECK_EQ(std::count(begin, end, static_cast<float>(level) / 32768), end - begin);
}

// What a codec smears, and a frame of it, is less than two pictures.
TEST_CASE("A clip of MPEG-TS has its sound at the pictures' time, whatever way the stream cuts it") {
    const cli::testing::TemporaryFolder folder;
    for (const std::string codec : {"aac", "mp2"}) {
        CAPTURE(codec);
        const std::string address = "tcp://127.0.0.1:" + std::to_string(testing::FreePort());
        testing::ChildProgram camera({"ffmpeg",
                                      "-nostdin",
                                      "-loglevel",
                                      "quiet",
                                      "-f",
                                      "lavfi",
                                      "-i",
                                      "color=black:s=64x48:r=25:d=3,drawbox=c=white:t=fill:enable='gte(mod(t,1),0.5)'",
                                      "-f",
                                      "lavfi",
                                      "-i",
                                      "aevalsrc='0.5*sin(2*PI*1000*t)*gte(mod(t,1),0.5)':s=44100:d=3",
                                      "-c:v",
                                      "libx264",
                                      "-preset",
                                      "ultrafast",
                                      "-g",
                                      "10",
                                      "-c:a",
                                      codec,
                                      "-f",
                                      "mpegts",
                                      address + "?listen"});
        LiveSource source(ParseLiveName(address));
        testing::Await("nearly all of it", [&] { return source.Ring().Size().seconds > 2.8; });
        const PacketRing::Held held = source.HoldReplay().held;
        REQUIRE(held.soundCodec);
        CHECK_EQ(held.soundCodec->sample_rate, 44100);
        const std::int64_t frames = std::ssize(FrameTimes(held));
        CHECK_EQ(WriteClip(held, {0, frames - 1, width, height}, folder / (codec + ".mkv")), 0);
        testing::CheckBeats(folder / (codec + ".mkv"), 2.0 / 25);
    }
}

// This camera's pictures are sent a picture earlier than they are shown, which begins below zero: NUT has no such
// times.
TEST_CASE("Pictures are shown in their order, and soon after they came, from a stream's first on") {
    const std::string address = "tcp://127.0.0.1:" + std::to_string(testing::FreePort());
    const testing::Camera camera({.address = address + "?listen", .format = "nut", .level = 8000});
    const LiveSource source(ParseLiveName(address));
    testing::Await("a dozen pictures", [&] { return source.Ring().Hold().packets.size() >= 12; });
    std::int64_t last = -1;
    for (const LivePacket& packet : source.Ring().Hold().packets) {
        CHECK_GT(packet->pts, last);
        CHECK_LE(packet->pts - packet->dts, 20'000);
        last = packet->pts;
    }
}

TEST_CASE("Sound that takes more than its share of the memory, or has no pictures, is not kept") {
    PacketRing ring({60, 1U << 16U});
    const AvPacket packet = NewPacket();
    av_new_packet(packet.get(), 4000);
    ring.AddSound(CopyPacket(*packet, 0, 0));
    CHECK_EQ(ring.Size().bytes, 0);
    packet->flags |= AV_PKT_FLAG_KEY;
    ring.Begin(LiveCodec());
    ring.Add(CopyPacket(*packet, 0, 0));
    for (std::int64_t time = 0; time < 100; ++time) ring.AddSound(CopyPacket(*packet, time, time));
    CHECK_LE(ring.Size().bytes, (1U << 14U) + 4000 + sizeof(AVPacket));
    CHECK_FALSE(ring.Hold().sound.empty());
    // Pictures take it with them when they go.
    for (std::int64_t second = 1; second < 70; ++second)
        ring.Add(CopyPacket(*packet, second * 1'000'000, second * 1'000'000));
    CHECK(ring.Hold().sound.empty());
}

}  // namespace kel
