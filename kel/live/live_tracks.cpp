#include "kel/live/live_tracks.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "kel/live/clip_file.h"
#include "kel/live/held_packets.h"
#include "kel/video/packet_sound.h"
#include "kel/video/sound_reader.h"

namespace kel {
namespace {

constexpr std::int64_t samplesOfSecond = SoundSource::samplesPerSecond;
constexpr std::int64_t packetRounding = samplesOfSecond / 100;  // of packets that follow each other
constexpr std::int64_t farthestDecoded = 10 * samplesOfSecond;  // of who reads, that is kept

std::int64_t SampleAt(const AVPacket& packet) {
    return av_rescale_q(packet.pts, liveUnit, {1, static_cast<int>(samplesOfSecond)});
}

// Decodes what comes as it is read, and has nothing of what is read no more.
class RingSound final : public SoundSource {
public:
    explicit RingSound(std::shared_ptr<const PacketRing> ring) : m_ring(std::move(ring)) {}

    void Seek(double seconds) override { m_at = std::llround(seconds * samplesPerSecond); }
    std::size_t Read(std::span<float> samples) override;

private:
    void DecodeWhatCame();
    void Place(std::int64_t at);
    [[nodiscard]] std::int64_t End() const { return m_begin + std::ssize(m_samples) / std::int64_t{channels}; }
    void DropUntil(std::int64_t at);

    std::shared_ptr<const PacketRing> m_ring;
    std::int64_t m_number = 0;  // of the packet that comes next
    LiveCodec m_codec;
    std::unique_ptr<PacketSound> m_decoder;
    std::vector<float> m_samples;  // decoded, and not read yet
    std::int64_t m_begin = 0;      // when they are heard
    std::int64_t m_at = 0;         // what is read next
};

// Packets follow each other, but for where some are missing or come twice.
void RingSound::Place(std::int64_t at) {
    const std::int64_t gap = at - End();
    if (m_samples.empty() || gap > samplesOfSecond || gap < -samplesOfSecond) {
        m_samples.clear();
        m_begin = at;
    } else if (gap > packetRounding) {
        m_samples.resize(m_samples.size() + channels * static_cast<std::size_t>(gap), 0.0F);
    } else if (gap < -packetRounding) {
        m_samples.resize(m_samples.size() - std::min(m_samples.size(), channels * static_cast<std::size_t>(-gap)));
    }
}

void RingSound::DecodeWhatCame() {
    LiveCodec codec;
    const std::vector<LivePacket> packets = m_ring->TakeSound(m_number, codec);
    if (packets.empty()) return;
    if (codec != m_codec) {
        m_codec = codec;
        m_decoder = std::make_unique<PacketSound>(*codec);
    }
    for (const LivePacket& packet : packets) {
        const std::int64_t at = SampleAt(*packet);
        if (at < m_at - samplesOfSecond || at > m_at + farthestDecoded) continue;
        Place(at);
        m_decoder->Decode(*packet, m_samples);
    }
}

void RingSound::DropUntil(std::int64_t at) {
    const std::int64_t gone = std::clamp<std::int64_t>(at - m_begin, 0, End() - m_begin);
    m_samples.erase(m_samples.begin(), m_samples.begin() + gone * std::int64_t{channels});
    m_begin += gone;
}

std::size_t RingSound::Read(std::span<float> samples) {
    DecodeWhatCame();
    DropUntil(m_at);
    if (m_samples.empty()) return 0;
    const auto wanted = std::ssize(samples) / std::int64_t{channels};
    const std::int64_t silent = std::clamp<std::int64_t>(m_begin - m_at, 0, wanted);
    std::fill_n(samples.begin(), silent * std::int64_t{channels}, 0.0F);
    const std::int64_t heard = std::clamp<std::int64_t>(End() - std::max(m_at, m_begin), 0, wanted - silent);
    std::copy_n(m_samples.begin(), heard * std::int64_t{channels}, samples.begin() + silent * std::int64_t{channels});
    m_at += silent + heard;
    return static_cast<std::size_t>(silent + heard);
}

}  // namespace

std::unique_ptr<SoundSource> RingTrack::Open() const {
    return m_ring->HasSound() ? std::make_unique<RingSound>(m_ring) : nullptr;
}

HeldTrack::HeldTrack(std::string name, const PacketRing::Held& held)
    : m_name(std::move(name)), m_sound{held.sound, held.soundCodec, {}, {}} {
    const std::vector<std::int64_t> times = FrameTimes(held);
    if (!times.empty()) m_begin = static_cast<double>(times.front()) * av_q2d(liveUnit);
}

std::unique_ptr<SoundSource> HeldTrack::Open() const {
    if (!m_sound.codec || m_sound.packets.empty()) return nullptr;
    return SoundReader::Open(std::make_unique<HeldPackets>(m_name, m_sound, 0.0), liveUnit, m_begin);
}

}  // namespace kel
