#include "chalkpane/image/picture_pool.h"

#include <cstdlib>
#include <mutex>
#include <utility>

namespace chalkpane {
namespace {

// Less stays with the allocator anyway.
constexpr std::size_t fewestBytes = std::size_t{1} << 20;

struct Kept {
    void* memory = nullptr;
    std::size_t bytes = 0;
};

std::mutex lock;
int pools = 0;
Kept kept;

}  // namespace

PicturePool::PicturePool() {
    const std::lock_guard guard(lock);
    ++pools;
}

PicturePool::~PicturePool() {
    const std::lock_guard guard(lock);
    if (--pools == 0) std::free(std::exchange(kept, {}).memory);
}

void* PicturePool::Take(std::size_t bytes) {
    if (bytes < fewestBytes) return nullptr;
    const std::lock_guard guard(lock);
    const Kept found = std::exchange(kept, {});
    if (found.bytes >= bytes && found.bytes / 2 <= bytes) return found.memory;
    std::free(found.memory);
    return nullptr;
}

void PicturePool::Give(void* memory, std::size_t bytes) {
    if (bytes >= fewestBytes) {
        const std::lock_guard guard(lock);
        if (pools > 0) memory = std::exchange(kept, {memory, bytes}).memory;
    }
    std::free(memory);
}

}  // namespace chalkpane
