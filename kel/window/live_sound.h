#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "kel/live/packet_ring.h"
#include "kel/video/packet_sound.h"
#include "kel/window/sound_device.h"

namespace kel {

// Plays the sound of live pictures as it comes. What is late makes it skip, not lag.
class LiveSound {
public:
    // To be told of every field. Returns at once.
    //   isHeard  false: what comes is passed over
    void Follow(const PacketRing& ring, bool isHeard);

private:
    void Decode(const std::vector<LivePacket>& packets);
    void Play();

    std::unique_ptr<SoundDevice> m_device;  // null: no sound has come yet
    std::unique_ptr<PacketSound> m_decoder;
    LiveCodec m_codec;
    std::int64_t m_number = -1;  // of the packet that comes next; -1: none has been looked at
    std::vector<float> m_samples;
    bool m_isPlaying = false;
};

}  // namespace kel
