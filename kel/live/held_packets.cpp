#include "kel/live/held_packets.h"

#include <new>
#include <utility>

namespace kel {

HeldPackets::HeldPackets(std::string name, PacketRing::Held held, double framesPerSecond)
    : m_name(std::move(name)), m_held(std::move(held)), m_framesPerSecond(framesPerSecond) {
    if (m_held.packets.empty()) Refuse("nothing is kept yet");
}

bool HeldPackets::Read(AVPacket& packet) {
    av_packet_unref(&packet);
    if (m_next >= m_held.packets.size()) return false;
    if (av_packet_ref(&packet, m_held.packets[m_next++].get()) < 0) throw std::bad_alloc();
    return true;
}

bool HeldPackets::Seek(std::int64_t time) {
    for (std::size_t i = m_held.packets.size(); i-- > 0;) {
        const AVPacket& packet = *m_held.packets[i];
        if ((packet.flags & AV_PKT_FLAG_KEY) == 0 || packet.pts > time) continue;
        m_next = i;
        return true;
    }
    return false;
}

}  // namespace kel
