#include "chalkpane/base/multi_processor.h"

#include <cstddef>
#include <mutex>
#include <system_error>

#include "chalkpane/base/starting_places.h"

#ifdef __unix__
#include <pthread.h>
#endif

namespace chalkpane {

namespace {

// Far beyond any machine; keeps a mistyped worker count from exhausting the process.
constexpr std::int32_t maximumProcessorCount = 1024;

std::atomic<MultiProcessor*> instance{nullptr};  // owned; the keeper below deletes it
std::atomic<bool> unloading{false};
std::atomic<RunListener*> runListener{nullptr};
thread_local const MultiProcessor* led = nullptr;  // the runner whose chain this thread runs

// How long a thread looks for what comes next in a chain: about as long as to sleep and be woken takes.
constexpr std::chrono::microseconds patience{50};

// The workers run code of this module, so they must be gone before it is unmapped or the process tears down its
// statics: a parked thread that wakes up later would return into nothing.
struct InstanceKeeper {
    ~InstanceKeeper() {
        unloading = true;
        delete instance.exchange(nullptr);
    }
} instanceKeeper;

// A process that was forked has its parent's runner and none of its threads, so it gets another when it wants one. That
// of the parent stays where it is: who waits in it is not known.
void ForgetRunnerWhenForked() {
#ifdef __unix__
    [[maybe_unused]] static const int once = pthread_atfork(nullptr, nullptr, [] {
        instance = nullptr;
        led = nullptr;
    });
#endif
}

std::int32_t MachineProcessorCount() {
    return static_cast<std::int32_t>(
        std::clamp<unsigned>(std::thread::hardware_concurrency(), 1, static_cast<unsigned>(maximumProcessorCount)));
}

struct BandJob {
    std::int32_t firstRow;
    std::int32_t lastRow;
    std::int32_t rowsPerBand;
    RowFunction rowFunction;
    void* userData;
};

void RunBand(std::int32_t band, void* userData, std::int32_t worker) {
    const BandJob& job = *static_cast<const BandJob*>(userData);
    const std::int64_t first = job.firstRow + std::int64_t{band} * job.rowsPerBand;
    const std::int64_t last = std::min<std::int64_t>(first + job.rowsPerBand - 1, job.lastRow);
    for (std::int64_t row = first; row <= last; ++row)
        job.rowFunction(static_cast<std::int32_t>(row), job.userData, worker);
}

struct HeardJob {
    RunListener& listener;
    RowFunction rowFunction;
    void* userData;
};

void RunHeardRow(std::int32_t row, void* userData, std::int32_t worker) {
    const HeardJob& job = *static_cast<const HeardJob*>(userData);
    job.rowFunction(row, job.userData, worker);
    job.listener.RowDone();
}

// Calls `run` with the rows as they are, or with such that the listener hears of.
template <typename RunThem>
void RunHeard(std::int32_t firstRow, std::int32_t lastRow, RowFunction rowFunction, void* userData, RunThem run) {
    RunListener* const listener = runListener.load(std::memory_order_acquire);
    if (listener == nullptr || lastRow < firstRow) return run(rowFunction, userData);
    listener->BeginLoop(std::int64_t{lastRow} - firstRow + 1);
    HeardJob job{*listener, rowFunction, userData};
    run(RunHeardRow, &job);
}

void RunSerially(std::int32_t firstRow, std::int32_t lastRow, RowFunction rowFunction, void* userData) {
    for (std::int64_t row = firstRow; row <= lastRow; ++row) rowFunction(static_cast<std::int32_t>(row), userData, 0);
}

}  // namespace

void MultiProcessor::Event::Set() {
    m_signalled.store(1, std::memory_order_release);
    m_signalled.notify_one();
}

void MultiProcessor::Event::Wait() {
    if (Take()) return;
    m_hasSleeper.store(true, std::memory_order_relaxed);
    while (!Take()) m_signalled.wait(0, std::memory_order_acquire);
    m_hasSleeper.store(false, std::memory_order_relaxed);
}

void MultiProcessor::Event::WaitAwake(const std::atomic<bool>& isAwake) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (isAwake.load(std::memory_order_acquire) && std::chrono::steady_clock::now() < end) {
        if (Take()) return;
        std::this_thread::yield();  // whoever is to set it may need this processor
    }
    Wait();
}

MultiProcessor& MultiProcessor::Instance() {
    MultiProcessor* current = instance.load(std::memory_order_acquire);
    if (current == nullptr) {
        static std::mutex construction;
        const std::lock_guard lock(construction);
        current = instance.load(std::memory_order_acquire);
        if (current != nullptr) return *current;
        // Whoever still paints while the module goes away gets a runner without threads, which nothing needs to stop.
        Restart(unloading ? 1 : 0);
        current = instance.load(std::memory_order_acquire);
    }
    return *current;
}

void MultiProcessor::Restart(std::int32_t processorCount) {
    ForgetRunnerWhenForked();
    delete instance.exchange(nullptr);
    instance = new MultiProcessor(processorCount < 1 ? MachineProcessorCount()
                                                     : std::min(processorCount, maximumProcessorCount));
}

MultiProcessor::MultiProcessor(std::int32_t processorCount) : m_processorCount(processorCount) {
    if (m_processorCount < 2) return;
    const auto count = static_cast<std::size_t>(m_processorCount);
    std::int32_t started = 0;
    try {
        m_finished = std::make_unique<std::uint8_t[]>(count);
        m_startEvents = std::make_unique<Event[]>(count);
        m_doneEvents = std::make_unique<Event[]>(count);
        m_threads = std::make_unique<std::thread[]>(count);
        m_ranges = std::make_unique<RowRange[]>(count);
        m_delays = std::make_unique<Delay[]>(count);
        for (; started < m_processorCount; ++started)
            m_threads[static_cast<std::size_t>(started)] = std::thread([this, i = started] { Work(i); });
    } catch (const std::exception&) {  // no memory or no threads to be had: everything still works, on one thread
        StopWorkers(started);
        m_processorCount = 1;
    }
}

MultiProcessor::~MultiProcessor() {
    if (m_processorCount >= 2) StopWorkers(m_processorCount);
}

void MultiProcessor::StopWorkers(std::int32_t started) {
    m_quit = 1;
    for (std::int32_t i = 0; i < started; ++i) m_startEvents[static_cast<std::size_t>(i)].Set();
    for (std::int32_t i = 0; i < started; ++i) m_threads[static_cast<std::size_t>(i)].join();
}

RunListener* MultiProcessor::SetListener(RunListener* listener) {
    return runListener.exchange(listener, std::memory_order_acq_rel);
}

void MultiProcessor::Run(std::int32_t firstRow, std::int32_t lastRow, RowFunction rowFunction, void* userData) {
    RunHeard(firstRow, lastRow, rowFunction, userData,
             [&](RowFunction row, void* data) { RunRows(firstRow, lastRow, row, data); });
}

void MultiProcessor::RunInOrder(std::int32_t firstRow, std::int32_t lastRow, RowFunction rowFunction, void* userData) {
    RunHeard(firstRow, lastRow, rowFunction, userData,
             [&](RowFunction row, void* data) { RunSerially(firstRow, lastRow, row, data); });
}

void MultiProcessor::RunChain(ChainFunction chain, void* userData) {
    if (m_processorCount < 2 || m_busy.exchange(1) != 0) return chain(userData);
    m_chain = chain;
    m_chainData = userData;
    m_isInChain = true;
    m_startTime = std::chrono::steady_clock::now();
    // This thread sleeps next, so worker 0 begins here.
    Start(StartingPlaces(m_threads[0], m_processorCount), 0, m_processorCount - 1);
    m_doneEvents[0].Wait();
    m_chain = nullptr;
    m_busy = 0;
}

void MultiProcessor::RunRows(std::int32_t firstRow, std::int32_t lastRow, RowFunction rowFunction, void* userData) {
    const std::int64_t count = std::int64_t{lastRow} - firstRow + 1;
    // A chain keeps the runner busy for everybody else. Its own loops are parallel, and none within another.
    std::atomic<std::uint8_t>& busy = led == this ? m_chainIsBusy : m_busy;
    const bool parallel = RunsInParallel(count) && busy.exchange(1) == 0;
    if (!parallel) return RunSerially(firstRow, lastRow, rowFunction, userData);
    m_userData = userData;
    m_rowFunction = rowFunction;
    RunParallel(firstRow, lastRow);
    busy = 0;
}

void MultiProcessor::RunParallel(std::int32_t firstRow, std::int32_t lastRow) {
    const std::int32_t firstToStart = led == this ? 1 : 0;  // in a chain this thread is worker 0
    const StartingPlaces places(m_threads[0], m_processorCount);
    m_startTime = std::chrono::steady_clock::now();
    const std::int64_t chunk = (std::int64_t{lastRow} - firstRow + 1) / m_processorCount;
    std::int64_t row = firstRow;
    for (std::int32_t i = 0; i < m_processorCount; ++i, row += chunk) {
        const std::int64_t last = i + 1 == m_processorCount ? lastRow : row + chunk - 1;
        m_ranges[static_cast<std::size_t>(i)] = {static_cast<std::int32_t>(row), static_cast<std::int32_t>(last), 1};
        if (i >= firstToStart) Start(places, i, i - firstToStart);
    }
    if (firstToStart == 1) RunRange(0);
    for (std::int32_t i = firstToStart; i < m_processorCount; ++i)
        m_doneEvents[static_cast<std::size_t>(i)].WaitAwake(m_isInChain);
    LearnFromDelays(firstToStart);
}

void MultiProcessor::LearnFromDelays(std::int32_t firstStarted) {
    // Whoever has a processor keeps it for some milliseconds, and to wake a worker takes less than a tenth of one. With
    // 31 runs for each that is tried, a busy machine loses about a tenth of a millisecond a run.
    constexpr std::chrono::microseconds tooLate{500};
    constexpr std::int32_t runsToStay = 31;
    for (std::int32_t i = firstStarted; i < m_processorCount; ++i) {
        Delay& delay = m_delays[static_cast<std::size_t>(i)];
        if (delay.runsToStay > 0)
            --delay.runsToStay;
        else if (delay.ofStart > tooLate)
            delay.runsToStay = runsToStay;
    }
}

void MultiProcessor::Start(const StartingPlaces& places, std::int32_t worker, std::int32_t place) {
    const auto i = static_cast<std::size_t>(worker);
    const bool sleeps = m_startEvents[i].HasSleeper();
    if (sleeps) places.Hold(m_threads[i], m_delays[i].runsToStay > 0 ? m_processorCount - 1 : place);
    m_startEvents[i].Set();
    if (sleeps) places.Release(m_threads[i]);
}

void MultiProcessor::Work(std::int32_t worker) {
    const auto i = static_cast<std::size_t>(worker);
    Event& start = m_startEvents[i];
    for (start.WaitAwake(m_isInChain); m_quit == 0; start.WaitAwake(m_isInChain)) {
        m_delays[i].ofStart = std::chrono::steady_clock::now() - m_startTime;
        worker == 0 && m_chain != nullptr ? LeadChain() : RunRange(worker);
        m_doneEvents[i].Set();
    }
    m_finished[i] = 1;
    m_doneEvents[i].Set();
}

void MultiProcessor::RunRange(std::int32_t worker) {
    const RowRange range = m_ranges[static_cast<std::size_t>(worker)];
    for (std::int64_t row = range.first; row <= range.last; row += range.step)
        m_rowFunction(static_cast<std::int32_t>(row), m_userData, worker);
}

void MultiProcessor::LeadChain() {
    led = this;
    m_chain(m_chainData);
    led = nullptr;
    m_isInChain = false;
}

void detail::RunBands(std::int32_t firstRow, std::int32_t lastRow, std::int32_t rowsPerBand, RowFunction rowFunction,
                      void* userData) {
    BandJob job{firstRow, lastRow, rowsPerBand, rowFunction, userData};
    const std::int64_t count = std::int64_t{lastRow} - firstRow + 1;
    // With one row a band the bands can outnumber the 32-bit row numbers; such a loop counts in rows itself.
    if (rowsPerBand == 1) {
        MultiProcessor::Instance().Run(firstRow, lastRow, rowFunction, userData);
        return;
    }
    const std::int64_t bands = (count + rowsPerBand - 1) / rowsPerBand;
    MultiProcessor::Instance().Run(0, static_cast<std::int32_t>(bands - 1), RunBand, &job);
}

}  // namespace chalkpane
