#include "picture_io/side_by_side.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace picture_io {

std::size_t ProcessorCount() { return std::max<std::size_t>(1, std::thread::hardware_concurrency()); }

void RunSideBySide(std::size_t count, const std::function<void(std::size_t)>& task) {
    std::atomic<std::size_t> next = 0;
    std::exception_ptr failure;
    std::mutex failing;
    const auto work = [&] {
        try {
            for (std::size_t i = next++; i < count; i = next++) task(i);
        } catch (...) {
            const std::lock_guard lock(failing);
            failure = std::current_exception();
            next = count;
        }
    };
    {
        std::vector<std::jthread> helpers;
        try {
            for (std::size_t i = 1; i < std::min(count, ProcessorCount()); ++i) helpers.emplace_back(work);
        } catch (const std::system_error&) {
            // A machine that gives no more threads does it with those there are.
        }
        work();
    }
    if (failure) std::rethrow_exception(failure);
}

}  // namespace picture_io
