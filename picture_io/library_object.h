#pragma once

#include <memory>
#include <new>

namespace picture_io {

// Owns what a library of C has made, and gives it back by `Free`. Throws std::bad_alloc where there is none: makers
// answer null for want of memory alone.
template <typename Free, typename T>
[[nodiscard]] std::unique_ptr<T, Free> Taken(T* made) {
    if (made == nullptr) throw std::bad_alloc();
    return std::unique_ptr<T, Free>(made);
}

}  // namespace picture_io
