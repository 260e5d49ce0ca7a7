#include "kel/window/live_sound.h"

#include <limits>

namespace kel {
namespace {

constexpr double queuedBefore = 0.08;    // seconds: what comes unevenly is evened out by so much
constexpr double mostQueued = 0.3;       // seconds, beyond which it would lag behind the pictures
constexpr std::size_t mostPackets = 64;  // of one field: more is what came while nobody looked

}  // namespace

void LiveSound::Decode(const std::vector<LivePacket>& packets) {
    m_samples.clear();
    const std::size_t skipped = packets.size() > mostPackets ? packets.size() - mostPackets : 0;
    for (std::size_t i = skipped; i < packets.size(); ++i) m_decoder->Decode(*packets[i], m_samples);
}

void LiveSound::Play() {
    if (m_device->Queued() > mostQueued) m_device->Silence();
    if (m_device->Queued() == 0) m_isPlaying = false;
    m_device->Queue(m_samples);
    if (m_isPlaying || m_device->Queued() < queuedBefore) return;
    m_device->Play();
    m_isPlaying = true;
}

void LiveSound::Follow(const PacketRing& ring, bool isHeard) {
    LiveCodec codec;
    if (m_number < 0) {  // what came before is over
        m_number = std::numeric_limits<std::int64_t>::max();
        (void)ring.TakeSound(m_number, codec);
    }
    const std::vector<LivePacket> packets = ring.TakeSound(m_number, codec);
    if (!isHeard) {
        if (m_device && m_isPlaying) m_device->Silence();
        m_isPlaying = false;
        return;
    }
    if (packets.empty()) return;
    if (!m_device) m_device = std::make_unique<SoundDevice>();
    if (!m_device->IsThere()) return;
    if (m_codec != codec) {
        m_codec = codec;
        m_decoder = std::make_unique<PacketSound>(*codec);
    }
    Decode(packets);
    if (!m_samples.empty()) Play();
}

}  // namespace kel
