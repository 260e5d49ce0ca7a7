#include "kel/live/packet_ring.h"

#include <doctest/doctest.h>

#include <limits>
#include <thread>

#include "kel/live/stream_times.h"

namespace kel {
namespace {

constexpr std::int64_t second = 1'000'000;

// A packet of that many bytes.
LivePacket Packet(std::int64_t time, bool isKey, int bytes = 100) {
    const AvPacket packet = NewPacket();
    REQUIRE_GE(av_new_packet(packet.get(), bytes), 0);
    if (isKey) packet->flags |= AV_PKT_FLAG_KEY;
    return CopyPacket(*packet, time, time);
}

}  // namespace

TEST_CASE("A ring keeps the last seconds whole, and begins with a key") {
    PacketRing ring({2, 1U << 20U});
    // Ten packets a second, a key each half of one: after five seconds, keys at 0, 0.5 ... 4.5 and the last at 4.9. Two
    // seconds are whole from the key at 2.5 on, as the next one, at 3.0, leaves but 1.9.
    for (int i = 0; i < 50; ++i) ring.Add(Packet(i * second / 10, i % 5 == 0));
    const PacketRing::Held held = ring.Hold();
    REQUIRE_FALSE(held.packets.empty());
    CHECK_EQ(held.packets.front()->dts, 25 * second / 10);
    CHECK_EQ(held.packets.size(), 25);
    CHECK_EQ(ring.Size().seconds, doctest::Approx(2.4));
}

TEST_CASE("A ring takes no more memory than it may") {
    constexpr std::size_t most = 100'000;
    PacketRing ring({60, most});
    for (int i = 0; i < 500; ++i) {
        ring.Add(Packet(i * second / 50, i % 10 == 0, 1500));
        CHECK_LE(ring.Size().bytes, most);
    }
    CHECK_GT(ring.Hold().packets.size(), 30);  // of some sixty that fit
}

TEST_CASE("A ring of packets without keys holds nothing") {
    PacketRing ring({60, 1U << 20U});
    for (int i = 0; i < 20; ++i) ring.Add(Packet(i, false));
    CHECK(ring.Hold().packets.empty());
    CHECK_EQ(ring.Size().bytes, 0);
}

TEST_CASE("Whoever is behind goes on from the last key") {
    PacketRing ring({60, 1U << 20U});
    for (int i = 0; i < 20; ++i) ring.Add(Packet(i, i % 8 == 0));
    CHECK_EQ(ring.Take(3, 100).number, 3);
    CHECK_EQ(ring.Take(3, 100).waiting, 16);
    const PacketRing::Next next = ring.Take(3, 5);
    CHECK_EQ(next.number, 16);  // keys are 0, 8 and 16
    CHECK(next.isBehindGap);
    CHECK_EQ(ring.Take(18, 0).number, 18);  // there is no key after it
}

TEST_CASE("A ring that ends wakes whoever waits for a packet") {
    PacketRing ring({60, 1U << 20U});
    std::thread waiting([&] { CHECK_EQ(ring.Take(0, 1).packet, nullptr); });
    ring.End();
    waiting.join();
}

TEST_CASE("Times go on where a stream's own do not") {
    StreamTimes times;
    CHECK_EQ(times.Next(7 * second, 7 * second + 40, 0).decoded, 0);
    const auto next = times.Next(7 * second + 20, 7 * second + 80, 20);
    CHECK_EQ(next.decoded, 20);
    CHECK_EQ(next.shown, 80);
    // It begins anew: 50 went by meanwhile.
    CHECK_EQ(times.Next(0, 0, 70).decoded, 70);
    CHECK_EQ(times.Next(20, 20, 90).decoded, 90);
    // A little backwards, or standing still, it is only in the wrong order.
    CHECK_EQ(times.Next(20, 20, 91).decoded, 91);
    CHECK_EQ(times.Next(10, 10, 92).decoded, 92);
    // An hour on, or without any time, the clock of arrivals counts.
    CHECK_EQ(times.Next(3600 * second, std::nullopt, 100).decoded, 100);
    CHECK_EQ(times.Next(std::nullopt, std::nullopt, 140).decoded, 140);
    // The ends of what a number can say.
    constexpr std::int64_t end = std::numeric_limits<std::int64_t>::max();
    CHECK_EQ(times.Next(end, -end, 150).decoded, 150);
    CHECK_EQ(times.Next(-end, end, 160).shown, 160);
    // Pictures wait for others two seconds at most.
    CHECK_EQ(times.Next(0, 9 * second, 170).shown, 170 + 2 * second);
}

TEST_CASE("Times that no clock has said are none") {
    constexpr std::int64_t none = std::numeric_limits<std::int64_t>::min();
    StreamTimes times;
    CHECK_EQ(times.Next(none + 5, none + 25, 1000).decoded, 0);  // as they arrive
    CHECK_EQ(times.Next(none + 25, none + 45, 1020).decoded, 20);
    CHECK_FALSE(times.At(none + 25));
    CHECK_FALSE(times.At(std::numeric_limits<std::int64_t>::max()));
    const auto first = times.Next(none + 45, 7 * second, 1040);  // half of it is said
    CHECK_EQ(first.decoded, 40);
    CHECK_EQ(first.shown, 40);
    const auto next = times.Next(7 * second + 20, 7 * second + 40, 1060);
    CHECK_EQ(next.decoded, 60);
    CHECK_EQ(next.shown, 80);
    CHECK_EQ(times.At(7 * second + 20), 60);
}

}  // namespace kel
