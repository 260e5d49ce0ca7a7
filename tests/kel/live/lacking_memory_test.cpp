#include <doctest/doctest.h>

#include <atomic>
#include <cstdlib>
#include <new>

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
