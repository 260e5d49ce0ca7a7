#pragma once

#include <cstddef>

namespace chalkpane {

// While one lives, the memory of a large picture that goes is kept for the next of about its size, so that the pictures
// between the filters of a chain, or the frames of a film, touch fresh pages only once: these cost more than many a
// filter. One piece of memory is kept, and freed for any other that is wanted, so that there is never more of it than
// without a pool.
//
// Thread: any, and several may live at a time; all of them share the one piece.
class PicturePool {
public:
    PicturePool();
    ~PicturePool();
    PicturePool(const PicturePool&) = delete;
    PicturePool& operator=(const PicturePool&) = delete;
    PicturePool(PicturePool&&) = delete;
    PicturePool& operator=(PicturePool&&) = delete;

    // From malloc: what is kept, where it is about so large; null otherwise, and nothing is kept any more.
    [[nodiscard]] static void* Take(std::size_t bytes);
    // Keeps memory from malloc, or frees it. Null is nothing.
    static void Give(void* memory, std::size_t bytes);
};

}  // namespace chalkpane
