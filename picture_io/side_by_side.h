#pragma once

#include <cstddef>
#include <functional>

namespace picture_io {

// As many as this machine has processors, 1 at least.
[[nodiscard]] std::size_t ProcessorCount();

// Does tasks 0 .. count - 1 on all processors, each once, in no order, and returns when all are done. What a task
// throws comes out of here.
void RunSideBySide(std::size_t count, const std::function<void(std::size_t task)>& task);

}  // namespace picture_io
