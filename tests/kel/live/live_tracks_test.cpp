#include "kel/live/live_tracks.h"

#include <doctest/doctest.h>

#include <array>
#include <vector>

namespace kel {
namespace {

constexpr std::int64_t microseconds = 1'000'000;
constexpr int samplesOfPacket = 960;  // a fiftieth of a microseconds

// A picture, of which nobody looks at more than when it is.
void AddPicture(PacketRing& ring, std::int64_t time) {
    const AvPacket packet = NewPacket();
    av_new_packet(packet.get(), 1);
    packet->data[0] = 0;
    packet->flags |= AV_PKT_FLAG_KEY;
    ring.Add(CopyPacket(*packet, time, time));
}

// A fiftieth of a microseconds of one level, in both channels.
void AddPart(PacketRing& ring, std::int64_t time, std::int16_t level) {
    const AvPacket packet = NewPacket();
    av_new_packet(packet.get(), samplesOfPacket * 4);
    for (int i = 0; i < packet->size; ++i) packet->data[i] = static_cast<std::uint8_t>(level >> (i % 2 == 0 ? 0 : 8));
    packet->flags |= AV_PKT_FLAG_KEY;
    ring.AddSound(CopyPacket(*packet, time, time));
}

LiveCodec PlainSound() {
    AVCodecParameters codec{};
    codec.codec_type = AVMEDIA_TYPE_AUDIO;
    codec.codec_id = AV_CODEC_ID_PCM_S16LE;
    codec.format = AV_SAMPLE_FMT_S16;
    codec.sample_rate = 48000;
    codec.ch_layout = AV_CHANNEL_LAYOUT_STEREO;
    return CopyCodec(codec);
}

// Three seconds of pictures and sound from a microseconds on, in which each hundredth part of a microseconds has its
// own level.
std::int16_t PartLevel(std::int64_t time) { return static_cast<std::int16_t>(time / 10'000); }
void FillRing(PacketRing& ring) {
    ring.Begin(LiveCodec());
    AddPicture(ring, microseconds);
    ring.BeginSound(PlainSound());
    for (std::int64_t time = microseconds; time < 4 * microseconds; time += microseconds / 50) {
        AddPicture(ring, time + 1);
        AddPart(ring, time, PartLevel(time));
    }
}

// The levels of the first and the last of so many samples, and how many are there.
struct HeardPart {
    std::size_t count;
    int first;
    int last;
};
HeardPart ReadPart(SoundSource& sound, std::size_t samples) {
    std::vector<float> read(2 * samples);
    const std::size_t count = sound.Read(read);
    const auto level = [&](std::size_t i) { return static_cast<int>(read[2 * i + 1] * 32768.0F + 0.5F); };
    return count == 0 ? HeardPart{0, 0, 0} : HeardPart{count, level(0), level(count - 1)};
}

}  // namespace

TEST_CASE("The sound that comes into a ring is read at the pictures' time, as far as it has come") {
    const auto ring = std::make_shared<PacketRing>(PacketRing::Limits{60, 1U << 24U});
    const RingTrack track(ring);
    CHECK(track.Open() == nullptr);
    FillRing(*ring);
    const auto sound = track.Open();
    REQUIRE(sound);
    for (const double seconds : {1.5, 1.52, 2.0, 3.9}) {
        CAPTURE(seconds);
        sound->Seek(seconds);
        const HeardPart heard = ReadPart(*sound, samplesOfPacket);
        CHECK_EQ(heard.count, samplesOfPacket);
        CHECK_EQ(heard.first, PartLevel(static_cast<std::int64_t>(seconds * microseconds + 0.5)));
        CHECK_EQ(heard.last, heard.first);
    }
    // Eight hundredths of a microseconds are left of four; what comes then is read on.
    CHECK_EQ(ReadPart(*sound, samplesOfPacket * 10).count, samplesOfPacket * 4);
    CHECK_EQ(ReadPart(*sound, samplesOfPacket).count, 0);
    AddPart(*ring, 4 * microseconds, 5000);
    CHECK_EQ(ReadPart(*sound, samplesOfPacket).first, 5000);
}

TEST_CASE("What is missing in a ring's sound is silence, and what comes twice is heard once") {
    const auto ring = std::make_shared<PacketRing>(PacketRing::Limits{60, 1U << 24U});
    FillRing(*ring);
    AddPart(*ring, 4 * microseconds + microseconds / 10, 7000);  // a tenth of a microseconds later than it should
    AddPart(*ring, 4 * microseconds + microseconds / 10, 8000);
    const auto sound = RingTrack(ring).Open();
    REQUIRE(sound);
    sound->Seek(4);
    const HeardPart gap = ReadPart(*sound, samplesOfPacket * 5);
    CHECK_EQ(gap.count, samplesOfPacket * 5);
    CHECK_EQ(gap.first, 0);
    CHECK_EQ(gap.last, 0);
    const HeardPart after = ReadPart(*sound, samplesOfPacket * 5);
    CHECK_EQ(after.count, samplesOfPacket);
    CHECK_GE(after.first, 7000);
    // Before the first of what is kept there is silence, too.
    const auto early = RingTrack(ring).Open();
    early->Seek(0.5);
    CHECK_EQ(ReadPart(*early, samplesOfPacket).last, 0);
}

TEST_CASE("What a ring held is heard by the time of its first picture") {
    const auto ring = std::make_shared<PacketRing>(PacketRing::Limits{60, 1U << 24U});
    CHECK(HeldTrack("held", ring->Hold()).Open() == nullptr);
    FillRing(*ring);
    const auto sound = HeldTrack("held", ring->Hold()).Open();
    REQUIRE(sound);
    for (const double seconds : {0.0, 0.5, 1.02, 2.98}) {
        CAPTURE(seconds);
        sound->Seek(seconds);
        CHECK_EQ(ReadPart(*sound, 100).first, PartLevel(static_cast<std::int64_t>((seconds + 1) * microseconds + 0.5)));
    }
    CHECK_LT(ReadPart(*sound, 48000).count, 48000);  // over
}

}  // namespace kel
