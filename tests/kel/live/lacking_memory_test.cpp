#include <doctest/doctest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

#include "kel/live/live_decoder.h"
#include "tests/kel/live/watched_source.h"

// The test program's operator new fails as often as it is told, but never on the thread that tells it.

namespace kel {
namespace {

using testing::Await;
using testing::Camera;

std::atomic<int> failuresLeft = 0;
thread_local bool isSpared = false;

void* MemoryOrNone(std::size_t bytes) {
    if (failuresLeft > 0 && !isSpared && failuresLeft-- > 0) return nullptr;
    return std::malloc(bytes == 0 ? 1 : bytes);
}

// While it lives, so many allocations of other threads fail.
class Lack {
public:
    explicit Lack(int allocations) {
        isSpared = true;
        failuresLeft = allocations;
    }
    ~Lack() {
        failuresLeft = 0;
        isSpared = false;
    }
    Lack(const Lack&) = delete;
    Lack& operator=(const Lack&) = delete;
    Lack(Lack&&) = delete;
    Lack& operator=(Lack&&) = delete;
    [[nodiscard]] bool IsOver() const { return failuresLeft <= 0; }
};

}  // namespace

TEST_CASE("Live pictures for which memory lacks for a moment are lost, said so and opened again") {
    const int port = testing::FreePort();
    const Camera::Settings settings{.address = testing::Local("tcp", port, "?listen"), .format = "nut", .grey = 60};
    testing::Watched watched(testing::Local("tcp", port));
    const auto losePictures = [&](int failures) {
        const Camera camera(settings);
        Await("pictures", [&] { return watched.Source().IsThere(); });
        watched.AwaitGrey(60);
        const Lack lack(failures);
        Await("the failures", [&] { return lack.IsOver() || !watched.Source().IsThere(); });
        Await("the loss", [&] { return !watched.Source().IsThere(); });
    };
    losePictures(1);
    watched.AwaitNews("is lost: Cannot allocate memory. The last picture stays until it is back.");
    constexpr int all = 1 << 30;  // not even for the words of what is wrong
    losePictures(all);
    const Camera camera({.address = settings.address, .format = "nut", .grey = 180});
    watched.AwaitGrey(180);
}

namespace {

// A picture that is not compressed, of one grey, so that nothing but this decides what is shown.
constexpr int plainWidth = 64;
constexpr int plainHeight = 48;
LiveCodec PlainPictures(int width) {
    AVCodecParameters codec{};
    codec.codec_type = AVMEDIA_TYPE_VIDEO;
    codec.codec_id = AV_CODEC_ID_RAWVIDEO;
    codec.format = AV_PIX_FMT_RGB24;
    codec.sample_aspect_ratio = {0, 1};
    codec.width = width;
    codec.height = plainHeight;
    return CopyCodec(codec);
}
void AddGrey(PacketRing& ring, int width, std::uint8_t grey, std::int64_t number) {
    const AvPacket packet = NewPacket();
    av_new_packet(packet.get(), 3 * width * plainHeight);
    std::fill_n(packet->data, packet->size, grey);
    packet->flags |= AV_PKT_FLAG_KEY;
    ring.Add(CopyPacket(*packet, number * 20'000, number * 20'000));
}

}  // namespace

TEST_CASE("Pictures for which a decoder lacks memory are left out, and those that come then are shown") {
    // At the first picture its size is learnt, and at that of the second stream it is another one.
    for (const int failures : {1, 2, 3, 5}) {
        CAPTURE(failures);
        PacketRing ring({60, 1U << 24U});
        LiveNews news;
        LiveDecoder decoder(ring, news);
        std::int64_t number = 0;
        picture_io::Picture shown;
        for (const int width : {plainWidth, 2 * plainWidth}) {
            ring.Begin(PlainPictures(width));
            {
                const Lack lack(failures);
                Await("the failures", [&] {
                    AddGrey(ring, width, 50, ++number);
                    return lack.IsOver();
                });
            }
            Await("the grey", [&] {
                AddGrey(ring, width, 200, ++number);
                (void)decoder.Take(shown);
                return shown.width == plainWidth && shown.At(plainWidth / 2, plainHeight / 2)[0] == 200;
            });
        }
        ring.End();
    }
}

}  // namespace kel

void* operator new(std::size_t bytes) {
    void* const memory = kel::MemoryOrNone(bytes);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept { return kel::MemoryOrNone(bytes); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
