#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>

namespace kel {

// How far a work has come, told by its thread and read by another one.
struct WorkProgress {
    std::atomic<std::int64_t> done = 0;
    std::atomic<std::int64_t> all = 0;    // 0: not known yet
    std::atomic<bool> isStopped = false;  // the operator wants no more of it

    // True: the work goes on.
    bool Tell(std::int64_t doneNow, std::int64_t allOfIt) {
        done = doneNow;
        all = allOfIt;
        return !isStopped;
    }
};

// Runs the work on a thread of its own and shows how far it is in a small window with a way to stop it; closing the
// window is one too. Returns when the work has ended, and throws what it threw. Where no window can be opened the work
// is done without one.
//   what  such as "Writing drawn.mp4"
void RunWithProgressWindow(const std::string& what, const std::function<void(WorkProgress&)>& work);

}  // namespace kel
