#include "kel/live/packet_ring.h"

#include <algorithm>
#include <new>
#include <utility>

namespace kel {
namespace {

bool IsKey(const AVPacket& packet) { return (packet.flags & AV_PKT_FLAG_KEY) != 0; }

// With the objects around its bytes.
std::size_t BytesOf(const AVPacket& packet) { return static_cast<std::size_t>(packet.size) + sizeof(AVPacket); }

}  // namespace

LivePacket CopyPacket(const AVPacket& packet, std::int64_t decoded, std::int64_t shown) {
    AvPacket copy = NewPacket();
    if (av_new_packet(copy.get(), packet.size) < 0) throw std::bad_alloc();
    std::copy_n(packet.data, packet.size, copy->data);
    for (int i = 0; i < packet.side_data_elems; ++i) {
        const AVPacketSideData& side = packet.side_data[i];
        std::uint8_t* const room = av_packet_new_side_data(copy.get(), side.type, side.size);
        if (room == nullptr) throw std::bad_alloc();
        std::copy_n(side.data, side.size, room);
    }
    copy->flags = packet.flags & AV_PKT_FLAG_KEY;
    copy->dts = decoded;
    copy->pts = shown;
    return {copy.release(), picture_io::FreeAvObject()};
}

LiveCodec CopyCodec(const AVCodecParameters& parameters) {
    std::unique_ptr<AVCodecParameters, FreeAvParameters> copy(avcodec_parameters_alloc());
    if (!copy || avcodec_parameters_copy(copy.get(), &parameters) < 0) throw std::bad_alloc();
    return LiveCodec(std::move(copy));
}

void PacketRing::Begin(LiveCodec codec) {
    const std::lock_guard lock(m_mutex);
    m_first += static_cast<std::int64_t>(m_packets.size());
    m_packets.clear();
    DropSound();
    m_bytes = 0;
    m_codec = std::move(codec);
}

void PacketRing::Add(LivePacket packet) {
    {
        const std::lock_guard lock(m_mutex);
        if (m_packets.empty() && !IsKey(*packet)) return;
        m_bytes += BytesOf(*packet);
        m_packets.push_back(std::move(packet));
        Drop();
    }
    m_changed.notify_all();
}

void PacketRing::BeginSound(LiveCodec codec) {
    const std::lock_guard lock(m_mutex);
    while (!m_sound.empty()) DropFirstSound();
    m_soundCodec = std::move(codec);
}

void PacketRing::AddSound(LivePacket packet) {
    constexpr std::size_t share = 4;  // of the memory, a part of so many
    const std::lock_guard lock(m_mutex);
    if (m_packets.empty()) return;
    m_bytes += BytesOf(*packet);
    m_soundBytes += BytesOf(*packet);
    m_sound.push_back(std::move(packet));
    while (m_soundBytes > m_limits.bytes / share) DropFirstSound();
}

void PacketRing::DropFirstSound() {
    m_bytes -= BytesOf(*m_sound.front());
    m_soundBytes -= BytesOf(*m_sound.front());
    m_sound.pop_front();
    ++m_firstSound;
}

// All that is heard before the first picture.
void PacketRing::DropSound() {
    while (!m_sound.empty() && (m_packets.empty() || m_sound.front()->pts < m_packets.front()->pts)) DropFirstSound();
}

std::vector<LivePacket> PacketRing::TakeSound(std::int64_t& number, LiveCodec& codec) const {
    const std::lock_guard lock(m_mutex);
    codec = m_soundCodec;
    const std::int64_t end = m_firstSound + std::ssize(m_sound);
    const std::int64_t from = std::clamp(std::exchange(number, end), m_firstSound, end);
    return {m_sound.begin() + (from - m_firstSound), m_sound.end()};
}

bool PacketRing::HasSound() const {
    const std::lock_guard lock(m_mutex);
    return m_soundCodec != nullptr && !m_sound.empty();
}

void PacketRing::End() {
    {
        const std::lock_guard lock(m_mutex);
        m_isOver = true;
    }
    m_changed.notify_all();
}

double PacketRing::Seconds() const {
    return m_packets.empty() ? 0
                             : static_cast<double>(m_packets.back()->dts - m_packets.front()->dts) * av_q2d(liveUnit);
}

void PacketRing::DropFirst() {
    m_bytes -= BytesOf(*m_packets.front());
    m_packets.pop_front();
    ++m_first;
    DropSound();
}

// Up to the next key, as nothing can be decoded before it. The seconds are kept whole: a key goes when there are as
// many without what hangs on it. The last packet stays, so that it can be shown.
void PacketRing::Drop() {
    const auto nextKey = [this] {
        return std::find_if(m_packets.begin() + 1, m_packets.end(),
                            [](const LivePacket& each) { return IsKey(*each); });
    };
    for (auto key = nextKey(); key != m_packets.end(); key = nextKey()) {
        const double left = static_cast<double>(m_packets.back()->dts - (*key)->dts) * av_q2d(liveUnit);
        if (left < m_limits.seconds && m_bytes <= m_limits.bytes) break;
        for (auto count = key - m_packets.begin(); count > 0; --count) DropFirst();
    }
    // A stream whose keys are farther apart than that begins with its next one.
    while (m_packets.size() > 1 && (m_bytes > m_limits.bytes || !IsKey(*m_packets.front()))) DropFirst();
}

std::int64_t PacketRing::LastKeyAfter(std::int64_t number) const {
    for (auto i = static_cast<std::int64_t>(m_packets.size()) - 1; m_first + i > number; --i)
        if (IsKey(*m_packets[static_cast<std::size_t>(i)])) return m_first + i;
    return number;
}

PacketRing::Next PacketRing::Take(std::int64_t number, std::int64_t mostWaiting) {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [&] { return m_isOver || m_first + static_cast<std::int64_t>(m_packets.size()) > number; });
    if (m_isOver) return {};
    const std::int64_t end = m_first + static_cast<std::int64_t>(m_packets.size());
    std::int64_t taken = std::max(number, m_first);
    if (end - 1 - taken > mostWaiting) taken = LastKeyAfter(taken);
    return {m_packets[static_cast<std::size_t>(taken - m_first)], m_codec, taken, taken != number, end - 1 - taken};
}

PacketRing::Held PacketRing::Hold() const {
    const std::lock_guard lock(m_mutex);
    if (m_packets.empty() || !IsKey(*m_packets.front())) return {{}, m_codec, {}, {}};
    return {{m_packets.begin(), m_packets.end()}, m_codec, {m_sound.begin(), m_sound.end()}, m_soundCodec};
}

PacketRing::Figures PacketRing::Size() const {
    const std::lock_guard lock(m_mutex);
    return {Seconds(), m_bytes};
}

}  // namespace kel
