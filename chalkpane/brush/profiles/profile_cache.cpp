#include "chalkpane/brush/profiles/profile_cache.h"

#include <algorithm>
#include <utility>

namespace chalkpane {

std::size_t ProfileMasks::ByteSize() const {
    std::size_t sum = baseMask ? baseMask->ByteSize() : 0;
    for (const auto& column : shifted)
        for (const auto& mask : column) sum += mask ? mask->ByteSize() : 0;
    return sum;
}

std::shared_ptr<ProfileCache> ProfileCache::Shared() {
    static std::mutex mutex;
    static std::weak_ptr<ProfileCache> current;
    const std::lock_guard lock(mutex);
    auto cache = current.lock();
    if (!cache) current = cache = std::make_shared<ProfileCache>();
    return cache;
}

std::shared_ptr<const ProfileMasks> ProfileCache::Find(const ProfileKey& key) {
    const std::lock_guard lock(mutex);
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& e) { return e.key == key; });
    if (found == entries.end()) return nullptr;
    entries.splice(entries.begin(), entries, found);
    return found->masks;
}

void ProfileCache::Add(const ProfileKey& key, std::shared_ptr<const ProfileMasks> masks) {
    const std::size_t added = masks->ByteSize();
    if (added > maximumBytes) return;
    const std::lock_guard lock(mutex);
    while (!entries.empty() && (entries.size() >= maximumEntries || bytes + added > maximumBytes)) {
        bytes -= entries.back().bytes;
        entries.pop_back();
    }
    entries.push_front({key, std::move(masks), added});
    bytes += added;
}

void ProfileCache::Clear() {
    const std::lock_guard lock(mutex);
    entries.clear();
    bytes = 0;
}

}  // namespace chalkpane
