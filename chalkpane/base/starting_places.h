#pragma once

#include <cstdint>
#include <thread>

#ifdef __linux__
#include <sched.h>
#endif

namespace chalkpane {

// Where the workers of a run begin, so that they begin on different processors.
//
// A thread that wakes another and then sleeps itself is a pair of threads to Linux, which it likes to keep together: of
// two workers woken for half a millisecond both ran on the waking thread's processor in 98 of 100 runs, one after the
// other, while the second processor slept. So each worker is woken on a processor of its own, the last one on the
// caller's, which falls asleep next, and may go wherever the system likes from then on. Elsewhere than on Linux, where
// there are fewer workers than processors, or where the system refuses, nothing is placed and everything works as well.
class StartingPlaces {
public:
    // For a run of `workerCount` workers that the calling thread is about to start. `anyWorker` is one of them.
    StartingPlaces(std::thread& anyWorker, std::int32_t workerCount);

    // Holds a parked worker on its place, for the wake-up that comes next.
    //
    //   index  0 .. worker count - 1; the last one's place is the caller's processor
    void Hold(std::thread& worker, std::int32_t index) const;
    // Lets it go wherever it was allowed before.
    void Release(std::thread& worker) const;

private:
#ifdef __linux__
    cpu_set_t m_allowed{};
    std::int32_t m_here = 0;        // the caller's processor
    std::int32_t m_placeCount = 0;  // processors allowed; 0: nothing is placed
    std::int32_t m_workerCount = 0;
#endif
};

}  // namespace chalkpane
