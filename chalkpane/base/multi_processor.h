#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <exception>
#include <memory>
#include <thread>

namespace chalkpane {

class StartingPlaces;

// One row of a loop over the rows of an image.
//
//   row       the row number, in whatever plane the caller counts
//   userData  what was given to `Run`, shared by all workers
//   worker    0 .. processor count - 1, 0 on the caller's own thread: picks scratch memory of one worker
//
// Must not throw. Rows of one run may go to several threads at once, so they write distinct rows and what they read is
// ready before the run.
using RowFunction = void (*)(std::int32_t row, void* userData, std::int32_t worker);

// Loops that follow each other, and what has to be done between them. Must not throw.
using ChainFunction = void (*)(void* userData);

// Hears how far the loops of this process have come, for a program that shows it.
class RunListener {
public:
    RunListener() = default;
    RunListener(const RunListener&) = delete;
    RunListener& operator=(const RunListener&) = delete;
    RunListener(RunListener&&) = delete;
    RunListener& operator=(RunListener&&) = delete;
    virtual ~RunListener() = default;

    // A loop begins that is counted in so many rows, or bands of rows. On the thread that runs it.
    virtual void BeginLoop(std::int64_t rows) = 0;
    // One of them is done. Several threads come at a time. Must not throw.
    virtual void RowDone() = 0;
};

// The process-wide runner that spreads the rows of a loop over the processors: one call, one barrier, no queue.
//
// There is one instance. Its workers, one per processor, start with it and park on an event between runs, until the
// module is unloaded or the process ends; then they leave by themselves. The calling thread computes no rows of a
// parallel run. A call that finds the runner busy, a nested one or another thread's, runs serially: the rows are the
// same.
class MultiProcessor {
public:
    // The one instance, with a worker per processor; constructed by the first call, on whichever thread.
    [[nodiscard]] static MultiProcessor& Instance();
    // Replaces the one instance by one with so many workers, for tests, benchmarks and command lines. 1: no threads at
    // all; below 1: one per processor of this machine. Nothing may be running.
    static void Restart(std::int32_t processorCount);

    // Calls `rowFunction` once for each row, both ends included, and returns when all calls have returned. Up to 5
    // rows, or up to two rows per worker, run on the calling thread in ascending order; none when the range is
    // reversed.
    void Run(std::int32_t firstRow, std::int32_t lastRow, RowFunction rowFunction, void* userData);

    // The same on the calling thread alone and in ascending order.
    static void RunInOrder(std::int32_t firstRow, std::int32_t lastRow, RowFunction rowFunction, void* userData);

    // Calls `chain` once and returns when it has returned. It runs on worker 0, which takes its share of each loop that
    // it runs; between two loops no worker sleeps until nothing came for 50 microseconds. So the workers are woken once
    // and not for each loop. Where the runner is busy or has no workers, the chain runs on the calling thread.
    void RunChain(ChainFunction chain, void* userData);

    // From now on `listener` hears of all loops; null: nobody. Answers who did before. Not owned. Nothing may be
    // running. Loops of a single band, see `RunInBands`, are not worth telling.
    static RunListener* SetListener(RunListener* listener);

    [[nodiscard]] std::int32_t ProcessorCount() const { return m_processorCount; }
    // True: a run of so many rows goes to the workers, unless they are busy.
    [[nodiscard]] bool RunsInParallel(std::int64_t rows) const {
        return rows > 5 && rows > 2 * std::int64_t{m_processorCount} && m_processorCount >= 2;
    }

    MultiProcessor(const MultiProcessor&) = delete;
    MultiProcessor& operator=(const MultiProcessor&) = delete;
    virtual ~MultiProcessor();

private:
    // Set by one thread, waited for by one other; the wait resets it. What was written before `Set` is seen after
    // `Wait`, which is the whole locking protocol of this class.
    class alignas(64) Event {
    public:
        void Set();
        void Wait();
        // Looks for it a while, as long as `isAwake`, before it sleeps.
        void WaitAwake(const std::atomic<bool>& isAwake);
        // Whether a thread sleeps until it is set: a guess while that falls asleep or wakes up.
        [[nodiscard]] bool HasSleeper() const { return m_hasSleeper.load(std::memory_order_relaxed); }

    private:
        [[nodiscard]] bool Take() { return m_signalled.exchange(0, std::memory_order_acquire) != 0; }

        std::atomic<std::int32_t> m_signalled{0};
        std::atomic<bool> m_hasSleeper{false};
    };
    struct RowRange {
        std::int32_t first = 0;
        std::int32_t last = -1;
        std::int32_t step = 1;
    };
    struct Delay {
        std::chrono::nanoseconds ofStart{};  // from the start of the run to its first row
        std::int32_t runsToStay = 0;         // so many it begins where the caller is: somebody else has its own place
    };

    explicit MultiProcessor(std::int32_t processorCount);
    void RunRows(std::int32_t firstRow, std::int32_t lastRow, RowFunction rowFunction, void* userData);
    void RunParallel(std::int32_t firstRow, std::int32_t lastRow);
    void Start(const StartingPlaces& places, std::int32_t worker, std::int32_t place);
    void Work(std::int32_t worker);
    void RunRange(std::int32_t worker);
    void LeadChain();
    void LearnFromDelays(std::int32_t firstStarted);
    void StopWorkers(std::int32_t started);

    std::unique_ptr<Event[]> m_startEvents;
    std::unique_ptr<Event[]> m_doneEvents;
    std::unique_ptr<std::thread[]> m_threads;
    std::unique_ptr<std::uint8_t[]> m_finished;  // 1 once that worker has left its loop
    std::unique_ptr<RowRange[]> m_ranges;
    std::atomic<std::uint8_t> m_quit{0};
    std::atomic<std::uint8_t> m_busy{0};  // 1 while a parallel run is under way
    std::int32_t m_processorCount = 1;    // processors, which is also the number of workers
    void* m_userData = nullptr;
    RowFunction m_rowFunction = nullptr;
    ChainFunction m_chain = nullptr;  // what worker 0 does in place of rows; null: rows
    void* m_chainData = nullptr;
    std::atomic<bool> m_isInChain{false};
    std::chrono::steady_clock::time_point m_startTime{};  // of the loop, or of the chain
    std::unique_ptr<Delay[]> m_delays;                    // one a worker
    std::atomic<std::uint8_t> m_chainIsBusy{0};           // 1 while a chain's loop is under way
};

// Calls `work` as `MultiProcessor::RunChain` does; what it throws comes out here.
template <typename Work>
void RunTogether(Work work) {
    struct Job {
        Work& work;
        std::exception_ptr failure{};
    } job{work};
    MultiProcessor::Instance().RunChain(
        [](void* userData) {
            auto& together = *static_cast<Job*>(userData);
            try {
                together.work();
            } catch (...) {
                together.failure = std::current_exception();
            }
        },
        &job);
    if (job.failure) std::rethrow_exception(job.failure);
}

// About as many pixels as are worth waking a worker for: a round trip to parked workers costs 20 to 60 microseconds.
inline constexpr std::int32_t pixelsPerBand = 16384;

namespace detail {
void RunBands(std::int32_t firstRow, std::int32_t lastRow, std::int32_t rowsPerBand, RowFunction rowFunction,
              void* userData);
}

// Rows that make a band, at least 1; `pixelsPerRow` as for `RunInBands`.
[[nodiscard]] constexpr std::int32_t RowsInBand(std::int32_t pixelsPerRow) {
    return std::max(pixelsPerBand / std::max(pixelsPerRow, 1), 1);
}

// Bands that so many rows make, 0 for none; the last may have fewer rows.
[[nodiscard]] constexpr std::int64_t BandCount(std::int64_t rows, std::int32_t pixelsPerRow) {
    const std::int32_t rowsPerBand = RowsInBand(pixelsPerRow);
    return (rows + rowsPerBand - 1) / rowsPerBand;
}

// Runs the rows as `Run` does, but counts in bands of rows of about `pixelsPerBand` pixels, so that small pastes and
// transforms stay on the calling thread. A single band costs no more than the plain loop.
//
//   pixelsPerRow  pixels that one call of the row function works through; any number, below 1 counts as 1
inline void RunInBands(std::int32_t firstRow, std::int32_t lastRow, std::int32_t pixelsPerRow, RowFunction rowFunction,
                       void* userData) {
    const std::int32_t rowsPerBand = RowsInBand(pixelsPerRow);
    if (std::int64_t{lastRow} - firstRow >= rowsPerBand) {
        detail::RunBands(firstRow, lastRow, rowsPerBand, rowFunction, userData);
        return;
    }
    for (std::int64_t row = firstRow; row <= lastRow; ++row) rowFunction(static_cast<std::int32_t>(row), userData, 0);
}

}  // namespace chalkpane
