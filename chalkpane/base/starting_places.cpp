#include "chalkpane/base/starting_places.h"

#ifdef __linux__
#include <pthread.h>
#endif

namespace chalkpane {

#ifdef __linux__

StartingPlaces::StartingPlaces(std::thread& anyWorker, std::int32_t workerCount)
    : m_here(sched_getcpu()), m_workerCount(workerCount) {
    const bool isKnown = pthread_getaffinity_np(anyWorker.native_handle(), sizeof m_allowed, &m_allowed) == 0;
    if (!isKnown || m_here < 0 || m_here >= CPU_SETSIZE || !CPU_ISSET(m_here, &m_allowed)) return;
    const std::int32_t allowed = CPU_COUNT(&m_allowed);
    if (allowed >= 2 && workerCount >= allowed) m_placeCount = allowed;
}

void StartingPlaces::Hold(std::thread& worker, std::int32_t index) const {
    if (m_placeCount == 0) return;
    // The last worker begins here and those before it on the processors before this one, going round.
    std::int32_t place = m_here;
    for (std::int32_t steps = (m_workerCount - 1 - index) % m_placeCount; steps > 0;) {
        place = (place + CPU_SETSIZE - 1) % CPU_SETSIZE;
        if (CPU_ISSET(place, &m_allowed)) --steps;
    }
    cpu_set_t held;
    CPU_ZERO(&held);
    CPU_SET(place, &held);
    pthread_setaffinity_np(worker.native_handle(), sizeof held, &held);
}

void StartingPlaces::Release(std::thread& worker) const {
    if (m_placeCount != 0) pthread_setaffinity_np(worker.native_handle(), sizeof m_allowed, &m_allowed);
}

#else

StartingPlaces::StartingPlaces(std::thread&, std::int32_t) {}
void StartingPlaces::Hold(std::thread&, std::int32_t) const {}
void StartingPlaces::Release(std::thread&) const {}

#endif

}  // namespace chalkpane
