#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "kel/video/av_objects.h"

namespace kel {

struct FreeAvParameters {
    void operator()(AVCodecParameters* parameters) const { avcodec_parameters_free(&parameters); }
};

// A packet as it came, with times of its own (kel/live/stream_times.h) in place of the stream's.
using LivePacket = std::shared_ptr<const AVPacket>;
using LiveCodec = std::shared_ptr<const AVCodecParameters>;

// The last packets of a stream, from one on that decoding can start with, bounded in time and in memory. Packets are
// copied in, so that each takes what it has and none of the memory that came with it. One thread adds, others read.
class PacketRing {
public:
    struct Limits {
        double seconds = 60;
        std::size_t bytes = std::size_t{512} << 20U;  // at most; pictures that are not compressed come to it
    };
    explicit PacketRing(const Limits& limits) : m_limits(limits) {}

    // Whatever was there is of no use with what comes: it is coded otherwise.
    void Begin(LiveCodec codec);
    void Add(LivePacket packet);
    // The sound that goes with them, in its order; likewise. It is kept as long as they are, and is passed over where
    // it takes more than a share of the memory.
    void BeginSound(LiveCodec codec);
    void AddSound(LivePacket packet);
    // Nothing waits for a packet any more.
    void End();

    struct Next {
        LivePacket packet;         // null: the ring has ended
        LiveCodec codec;           // of the packet
        std::int64_t number = 0;   // of the packet, counted from the first that ever came
        bool isBehindGap = false;  // packets between the one asked for and this one are gone
        std::int64_t waiting = 0;  // that have come after it
    };
    // The packet of that number, waited for, or the first one after it that is still there.
    //   mostWaiting  if more have come after it, those are passed over for the last key among them, if there is one
    [[nodiscard]] Next Take(std::int64_t number, std::int64_t mostWaiting);

    struct Held {
        std::vector<LivePacket> packets;  // the first of them a key; none: there is none yet
        LiveCodec codec;
        std::vector<LivePacket> sound;
        LiveCodec soundCodec;  // null: there is no sound
    };
    [[nodiscard]] Held Hold() const;
    // The sound from that number on, counted from the first packet that ever came, which is then the next one's. It is
    // all that there is of it: nobody waits.
    [[nodiscard]] std::vector<LivePacket> TakeSound(std::int64_t& number, LiveCodec& codec) const;
    [[nodiscard]] bool HasSound() const;  // some is there

    struct Figures {
        double seconds = 0;
        std::size_t bytes = 0;
    };
    [[nodiscard]] Figures Size() const;

private:
    void Drop();
    void DropFirst();
    void DropSound();
    void DropFirstSound();
    [[nodiscard]] double Seconds() const;
    [[nodiscard]] std::int64_t LastKeyAfter(std::int64_t number) const;

    Limits m_limits;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<LivePacket> m_packets;  // guarded by m_mutex, as is all below
    LiveCodec m_codec;
    std::int64_t m_first = 0;  // the number of the first packet
    std::size_t m_bytes = 0;   // of pictures and sound
    std::deque<LivePacket> m_sound;
    LiveCodec m_soundCodec;
    std::int64_t m_firstSound = 0;
    std::size_t m_soundBytes = 0;
    bool m_isOver = false;
};

// A copy with these times, in microseconds, and none of the marks that readers of files refuse. Throws std::bad_alloc.
[[nodiscard]] LivePacket CopyPacket(const AVPacket& packet, std::int64_t decoded, std::int64_t shown);
[[nodiscard]] LiveCodec CopyCodec(const AVCodecParameters& parameters);

constexpr AVRational liveUnit{1, 1'000'000};

}  // namespace kel
