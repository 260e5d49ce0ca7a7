#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

#include "chalkpane/image/image.h"

namespace chalkpane {

// The images of one built profile; never written again.
struct ProfileMasks {
    std::unique_ptr<Image> baseMask;
    std::array<std::array<std::unique_ptr<Image>, 8>, 8> shifted;  // [eighths in x][eighths in y]; null without a base
    std::uint32_t randomStateAfter = 0;                            // of the engine's generator when they were done

    [[nodiscard]] std::size_t ByteSize() const;
};

// Everything that determines the images of a profile, word by word. A number that is compared here is compared by its
// bits.
using ProfileKey = std::vector<std::uint64_t>;

// Keeps the masks of the profiles that were built last, so that a brush which is set up again as it was, or as another
// brush is, costs no building. Bounded in entries and bytes; the one not used for longest goes first. A set of masks
// that alone is beyond the bound is not kept.
// There is one, and it lives as long as anyone holds it: profiles do, and so may the owner of a brush that is to keep
// it between two profiles. Thread: any; sets of masks are never written again, and threads share them.
class ProfileCache {
public:
    static constexpr std::size_t maximumEntries = 32;
    static constexpr std::size_t maximumBytes = std::size_t{32} << 20;

    [[nodiscard]] static std::shared_ptr<ProfileCache> Shared();

    // Null when it is not kept.
    [[nodiscard]] std::shared_ptr<const ProfileMasks> Find(const ProfileKey& key);
    void Add(const ProfileKey& key, std::shared_ptr<const ProfileMasks> masks);
    void Clear();

    [[nodiscard]] std::size_t Size() const {
        const std::lock_guard lock(mutex);
        return entries.size();
    }

private:
    struct Entry {
        ProfileKey key;
        std::shared_ptr<const ProfileMasks> masks;
        std::size_t bytes;
    };
    mutable std::mutex mutex;  // of what follows
    std::list<Entry> entries;  // the last used first
    std::size_t bytes = 0;
};

}  // namespace chalkpane
