#include "chalkpane/base/starting_places.h"

#include <doctest/doctest.h>

#ifdef __linux__
#include <pthread.h>
#include <sched.h>

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

using namespace chalkpane;

namespace {

using Processors = std::vector<std::int32_t>;

cpu_set_t SetOf(const Processors& processors) {
    cpu_set_t set;
    CPU_ZERO(&set);
    for (const std::int32_t processor : processors) CPU_SET(processor, &set);
    return set;
}

Processors AllowedTo(pthread_t thread) {
    cpu_set_t set;
    REQUIRE_EQ(pthread_getaffinity_np(thread, sizeof set, &set), 0);
    Processors processors;
    for (std::int32_t processor = 0; processor < CPU_SETSIZE; ++processor)
        if (CPU_ISSET(processor, &set)) processors.push_back(processor);
    return processors;
}

void Allow(pthread_t thread, const Processors& processors) {
    const cpu_set_t set = SetOf(processors);
    REQUIRE_EQ(pthread_setaffinity_np(thread, sizeof set, &set), 0);
}

// The calling thread on one processor, and wherever it was allowed again afterwards.
struct Caller {
    Processors allowed = AllowedTo(pthread_self());
    explicit Caller(std::size_t onto) { Allow(pthread_self(), {allowed[onto]}); }
    ~Caller() { Allow(pthread_self(), allowed); }
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;
};

// Threads that sleep until the end of the test and may run on `allowed`.
struct Sleepers {
    std::atomic<bool> over{false};
    std::vector<std::thread> threads;

    Sleepers(std::size_t count, const Processors& allowed) {
        for (std::size_t i = 0; i < count; ++i) threads.emplace_back([this] { over.wait(false); });
        for (std::thread& thread : threads) Allow(thread.native_handle(), allowed);
    }
    ~Sleepers() {
        over = true;
        over.notify_all();
        for (std::thread& thread : threads) thread.join();
    }
    Sleepers(const Sleepers&) = delete;
    Sleepers& operator=(const Sleepers&) = delete;
};

}  // namespace

TEST_CASE("The last worker begins where the caller is, those before it on the processors before, going round") {
    const Caller caller(0);
    if (caller.allowed.size() < 2) {
        MESSAGE("one processor alone: nothing to place");
        return;
    }
    const Processors two{caller.allowed[0], caller.allowed[1]};
    Sleepers sleepers(4, two);
    const StartingPlaces places(sleepers.threads[0], 4);
    const Processors expected{two[1], two[0], two[1], two[0]};
    for (std::size_t i = 0; i < 4; ++i) {
        std::thread& worker = sleepers.threads[i];
        places.Hold(worker, static_cast<std::int32_t>(i));
        CHECK_EQ(AllowedTo(worker.native_handle()), Processors{expected[i]});
        places.Release(worker);
        CHECK_EQ(AllowedTo(worker.native_handle()), two);
    }
}

TEST_CASE("Fewer workers than processors are placed by the system, and so is a single processor's") {
    const Caller caller(0);
    const bool isAlone = caller.allowed.size() < 2;
    const Processors processors = isAlone ? caller.allowed : Processors{caller.allowed[0], caller.allowed[1]};
    Sleepers sleepers(1, processors);
    std::thread& worker = sleepers.threads[0];
    const StartingPlaces places(worker, 1);
    places.Hold(worker, 0);
    CHECK_EQ(AllowedTo(worker.native_handle()), processors);
    places.Release(worker);
    CHECK_EQ(AllowedTo(worker.native_handle()), processors);
}

TEST_CASE("Workers that may not run where the caller does are placed by the system") {
    const Caller caller(0);
    if (caller.allowed.size() < 2) {
        MESSAGE("one processor alone: nothing to place");
        return;
    }
    const Processors other{caller.allowed[1]};
    Sleepers sleepers(2, other);
    const StartingPlaces places(sleepers.threads[0], 2);
    places.Hold(sleepers.threads[1], 1);
    CHECK_EQ(AllowedTo(sleepers.threads[1].native_handle()), other);
    places.Release(sleepers.threads[1]);
    CHECK_EQ(AllowedTo(sleepers.threads[1].native_handle()), other);
}

#endif
