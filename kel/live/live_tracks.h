#pragma once

#include <memory>
#include <string>

#include "kel/live/packet_ring.h"
#include "kel/video/sound_source.h"

namespace kel {

// The sound that goes on coming into a ring, by the ring's time in seconds.
class RingTrack final : public SoundTrack {
public:
    explicit RingTrack(std::shared_ptr<const PacketRing> ring) : m_ring(std::move(ring)) {}
    [[nodiscard]] std::unique_ptr<SoundSource> Open() const override;
    [[nodiscard]] bool IsLive() const override { return true; }

private:
    std::shared_ptr<const PacketRing> m_ring;
};

// The sound of what a ring held at a moment, counted from its first picture.
class HeldTrack final : public SoundTrack {
public:
    //   name  for messages
    HeldTrack(std::string name, const PacketRing::Held& held);
    [[nodiscard]] std::unique_ptr<SoundSource> Open() const override;
    [[nodiscard]] bool IsLive() const override { return false; }

private:
    std::string m_name;
    PacketRing::Held m_sound;  // in the place of pictures
    double m_begin = 0;        // of the pictures, in seconds
};

}  // namespace kel
