#include "chalkpane/base/multi_processor.h"

#include <doctest/doctest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <thread>
#include <vector>

#ifdef __unix__
#include <sys/wait.h>
#include <unistd.h>
#endif

using namespace chalkpane;

namespace {

// The one runner with so many workers, and the machine's own number again afterwards.
struct Workers {
    explicit Workers(std::int32_t count) { MultiProcessor::Restart(count); }
    ~Workers() { MultiProcessor::Restart(0); }
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;
};

// Who ran each row of a range, and when. Each row writes its own entry alone.
struct Log {
    struct Entry {
        std::int32_t calls = 0;
        std::int32_t worker = -1;
        std::int32_t order = -1;
        std::thread::id thread;
    };
    std::int32_t firstRow;
    std::vector<Entry> rows;
    std::atomic<std::int32_t> calls{0};

    Log(std::int32_t first, std::size_t count) : firstRow(first), rows(count) {}

    static void Note(std::int32_t row, void* userData, std::int32_t worker) {
        Log& log = *static_cast<Log*>(userData);
        Entry& entry = log.rows[static_cast<std::size_t>(std::int64_t{row} - log.firstRow)];
        ++entry.calls;
        entry.worker = worker;
        entry.order = log.calls++;
        entry.thread = std::this_thread::get_id();
    }
    [[nodiscard]] bool EachRowOnce() const {
        bool once = calls.load() == static_cast<std::int32_t>(rows.size());
        for (const Entry& entry : rows) once = once && entry.calls == 1;
        return once;
    }
    [[nodiscard]] bool SerialHere() const {
        bool serial = EachRowOnce();
        for (std::size_t i = 0; i < rows.size(); ++i)
            serial = serial && rows[i].worker == 0 && rows[i].thread == std::this_thread::get_id() &&
                     rows[i].order == static_cast<std::int32_t>(i);
        return serial;
    }
};

}  // namespace

TEST_CASE("A reversed range calls nothing") {
    const Workers workers(4);
    Log log(0, 1);
    MultiProcessor::Instance().Run(1, 0, Log::Note, &log);
    MultiProcessor::Instance().Run(std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min(),
                                   Log::Note, &log);
    RunInBands(7, 6, 100, Log::Note, &log);
    CHECK_EQ(log.calls.load(), 0);
}

TEST_CASE("Five rows stay on the caller's thread, six are enough for two workers") {
    const Workers workers(2);
    Log five(10, 5);
    MultiProcessor::Instance().Run(10, 14, Log::Note, &five);
    CHECK(five.SerialHere());
    Log six(10, 6);
    MultiProcessor::Instance().Run(10, 15, Log::Note, &six);
    CHECK(six.EachRowOnce());
    CHECK_FALSE(six.SerialHere());
}

TEST_CASE("Two rows a worker stay on the caller's thread") {
    const Workers workers(4);
    Log log(-3, 8);
    MultiProcessor::Instance().Run(-3, 4, Log::Note, &log);
    CHECK(log.SerialHere());
}

TEST_CASE("Nine rows go to four workers as 2, 2, 2 and 3, none to the caller") {
    const Workers workers(4);
    Log log(-3, 9);
    MultiProcessor::Instance().Run(-3, 5, Log::Note, &log);
    CHECK(log.EachRowOnce());
    const std::vector<std::int32_t> expected{0, 0, 1, 1, 2, 2, 3, 3, 3};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        CHECK_EQ(log.rows[i].worker, expected[i]);
        CHECK(log.rows[i].thread != std::this_thread::get_id());
        if (i > 0 && expected[i] == expected[i - 1]) {
            CHECK_GT(log.rows[i].order, log.rows[i - 1].order);
            CHECK(log.rows[i].thread == log.rows[i - 1].thread);
        }
    }
}

TEST_CASE("The last worker takes the whole remainder") {
    const Workers workers(4);
    Log log(0, 15);  // chunk 15 / 4 = 3: 3, 3, 3 and 6
    MultiProcessor::Instance().Run(0, 14, Log::Note, &log);
    std::vector<std::int32_t> rowsOf(4, 0);
    for (const auto& entry : log.rows) ++rowsOf[static_cast<std::size_t>(entry.worker)];
    CHECK_EQ(rowsOf, std::vector<std::int32_t>{3, 3, 3, 6});
}

TEST_CASE("One processor runs everything on the caller's thread") {
    const Workers workers(1);
    CHECK_EQ(MultiProcessor::Instance().ProcessorCount(), 1);
    Log log(0, 1000);
    MultiProcessor::Instance().Run(0, 999, Log::Note, &log);
    CHECK(log.SerialHere());
}

TEST_CASE("Every row is visited once whatever the number of rows and workers") {
    for (const std::int32_t count : {1, 2, 3, 5, 8}) {
        const Workers workers(count);
        for (std::int32_t rows = 0; rows <= 70; ++rows) {
            CAPTURE(count);
            CAPTURE(rows);
            Log log(-20, static_cast<std::size_t>(rows));
            MultiProcessor::Instance().Run(-20, -21 + rows, Log::Note, &log);
            CHECK(log.EachRowOnce());
        }
    }
}

TEST_CASE("Rows at both ends of the 32-bit range are reached and end there") {
    const Workers workers(3);
    constexpr auto lowest = std::numeric_limits<std::int32_t>::min();
    constexpr auto highest = std::numeric_limits<std::int32_t>::max();
    for (const std::int32_t rows : {3, 20}) {
        Log low(lowest, static_cast<std::size_t>(rows));
        MultiProcessor::Instance().Run(lowest, lowest + (rows - 1), Log::Note, &low);
        CHECK(low.EachRowOnce());
        Log high(highest - (rows - 1), static_cast<std::size_t>(rows));
        MultiProcessor::Instance().Run(highest - (rows - 1), highest, Log::Note, &high);
        CHECK(high.EachRowOnce());
        Log bands(highest - (rows - 1), static_cast<std::size_t>(rows));
        RunInBands(highest - (rows - 1), highest, 8000, Log::Note, &bands);
        CHECK(bands.EachRowOnce());
    }
}

namespace {

struct Nest {
    std::deque<Log> inner;
    std::vector<std::thread::id> outerThread;
};

void RunInner(std::int32_t row, void* userData, std::int32_t /*worker*/) {
    Nest& nest = *static_cast<Nest*>(userData);
    Log& log = nest.inner[static_cast<std::size_t>(row)];
    nest.outerThread[static_cast<std::size_t>(row)] = std::this_thread::get_id();
    MultiProcessor::Instance().Run(0, static_cast<std::int32_t>(log.rows.size()) - 1, Log::Note, &log);
}

}  // namespace

TEST_CASE("A run inside a run stays on its worker's thread and sees worker 0") {
    const Workers workers(3);
    Nest nest;
    constexpr std::size_t outerRows = 12;
    nest.outerThread.resize(outerRows);
    for (std::size_t i = 0; i < outerRows; ++i) nest.inner.emplace_back(0, 50);
    MultiProcessor::Instance().Run(0, outerRows - 1, RunInner, &nest);
    for (std::size_t i = 0; i < outerRows; ++i) {
        CHECK(nest.inner[i].EachRowOnce());
        for (const auto& entry : nest.inner[i].rows) {
            CHECK_EQ(entry.worker, 0);
            CHECK(entry.thread == nest.outerThread[i]);
        }
    }
    Log after(0, 50);  // the runner is free again
    MultiProcessor::Instance().Run(0, 49, Log::Note, &after);
    CHECK_FALSE(after.SerialHere());
}

TEST_CASE("A second thread that finds the runner busy does its rows itself") {
    const Workers workers(2);
    std::deque<Log> logs;
    constexpr std::size_t runs = 200;
    for (std::size_t i = 0; i < 2 * runs; ++i) logs.emplace_back(0, 20);
    const auto runAll = [&](std::size_t first) {
        for (std::size_t i = first; i < first + runs; ++i) MultiProcessor::Instance().Run(0, 19, Log::Note, &logs[i]);
    };
    std::thread other(runAll, runs);
    runAll(0);
    other.join();
    for (const Log& log : logs) CHECK(log.EachRowOnce());
}

TEST_CASE("What a run has written is there when it returns, run after run") {
    const Workers workers(4);
    struct Sums {
        std::vector<std::int64_t> rows = std::vector<std::int64_t>(64, 0);
        std::int64_t step = 0;
    } sums;
    constexpr std::int64_t runs = 500;
    for (std::int64_t i = 1; i <= runs; ++i) {
        sums.step = i;
        MultiProcessor::Instance().Run(
            0, 63,
            [](std::int32_t row, void* userData, std::int32_t) {
                auto& all = *static_cast<Sums*>(userData);
                all.rows[static_cast<std::size_t>(row)] += all.step;
            },
            &sums);
    }
    // 64 rows, each 1 + 2 + ... + 500 = 500 * 501 / 2.
    CHECK_EQ(std::accumulate(sums.rows.begin(), sums.rows.end(), std::int64_t{0}), 64 * (runs * (runs + 1) / 2));
}

TEST_CASE("The runner starts again with any number of workers") {
    for (const std::int32_t count : {2, 1, 7, 3}) {
        MultiProcessor::Restart(count);
        CHECK_EQ(MultiProcessor::Instance().ProcessorCount(), count);
        CHECK_EQ(&MultiProcessor::Instance(), &MultiProcessor::Instance());
    }
    MultiProcessor::Restart(-5);
    CHECK_GE(MultiProcessor::Instance().ProcessorCount(), 1);
    MultiProcessor::Restart(0);
    const auto machine = static_cast<std::int32_t>(std::thread::hardware_concurrency());
    CHECK_EQ(MultiProcessor::Instance().ProcessorCount(), machine < 1 ? 1 : machine);
}

// 16384 / 1024 = 16 rows a band: 16 rows are one band, and up to 5 bands are too few to be worth a worker.
TEST_CASE("Small work in bands stays on the caller's thread") {
    const Workers workers(2);
    for (const std::size_t rows : {std::size_t{1}, std::size_t{16}, std::size_t{17}, std::size_t{80}}) {
        Log log(5, rows);
        RunInBands(5, static_cast<std::int32_t>(4 + rows), 1024, Log::Note, &log);
        CHECK(log.SerialHere());
    }
}

TEST_CASE("Large work in bands reaches the workers a whole band at a time") {
    const Workers workers(2);
    Log log(5, 90);  // 6 bands, the last of 10 rows; 3 bands a worker
    RunInBands(5, 94, 1024, Log::Note, &log);
    CHECK(log.EachRowOnce());
    for (std::size_t i = 0; i < log.rows.size(); ++i) CHECK_EQ(log.rows[i].worker, i < 48 ? 0 : 1);
}

// 5 bands and 6, as above; four workers take more than 8 rows, one takes none.
TEST_CASE("A caller can ask beforehand whether rows go to the workers") {
    {
        const Workers workers(2);
        CHECK_EQ(BandCount(80, 1024), 5);
        CHECK_FALSE(MultiProcessor::Instance().RunsInParallel(BandCount(80, 1024)));
        CHECK_EQ(BandCount(81, 1024), 6);
        CHECK(MultiProcessor::Instance().RunsInParallel(BandCount(81, 1024)));
    }
    {
        const Workers workers(4);
        CHECK_FALSE(MultiProcessor::Instance().RunsInParallel(8));
        CHECK(MultiProcessor::Instance().RunsInParallel(9));
    }
    const Workers one(1);
    CHECK_FALSE(MultiProcessor::Instance().RunsInParallel(1000));
}

TEST_CASE("Any number of pixels a row will do for bands") {
    const Workers workers(2);
    constexpr auto huge = std::numeric_limits<std::int32_t>::max();
    for (const std::int32_t pixels : {huge, 16385, 1, 0, -1, std::numeric_limits<std::int32_t>::min()}) {
        CAPTURE(pixels);
        Log log(-4, 40);
        RunInBands(-4, 35, pixels, Log::Note, &log);
        CHECK(log.EachRowOnce());
        // Rows beyond a band's pixels count one by one, as in a plain run; narrow ones are far too few here.
        CHECK_EQ(log.SerialHere(), pixels < 16384);
    }
}

namespace {

class Heard final : public RunListener {
public:
    Heard() { MultiProcessor::SetListener(this); }
    ~Heard() override { MultiProcessor::SetListener(nullptr); }
    Heard(const Heard&) = delete;
    Heard& operator=(const Heard&) = delete;
    Heard(Heard&&) = delete;
    Heard& operator=(Heard&&) = delete;

    void BeginLoop(std::int64_t rows) override { loops.push_back(rows); }
    void RowDone() override { ++rowsDone; }

    std::vector<std::int64_t> loops;
    std::atomic<int> rowsDone{0};
};

}  // namespace

// 90 rows of 1024 pixels are 6 bands of 16.
TEST_CASE("A listener hears of loops and their rows, on one thread and on many, until it goes") {
    const Workers workers(2);
    Log log(5, 90);
    {
        Heard heard;
        RunInBands(5, 94, 1024, Log::Note, &log);
        MultiProcessor::Instance().Run(5, 7, Log::Note, &log);
        MultiProcessor::RunInOrder(8, 94, Log::Note, &log);
        RunInBands(5, 94, 1, Log::Note, &log);  // a single band
        MultiProcessor::Instance().Run(5, 4, Log::Note, &log);
        CHECK(heard.loops == std::vector<std::int64_t>{6, 3, 87});
        CHECK_EQ(heard.rowsDone, 6 + 3 + 87);
    }
    MultiProcessor::Instance().Run(5, 94, Log::Note, &log);
}

namespace {

// Three loops behind each other, each over what the one before it made.
struct ThreeLoops {
    std::deque<Log> loops;
    std::thread::id thread;

    ThreeLoops() {
        for (int i = 0; i < 3; ++i) loops.emplace_back(-3, 9U);
    }
    void operator()() {
        thread = std::this_thread::get_id();
        for (Log& log : loops) MultiProcessor::Instance().Run(-3, 5, Log::Note, &log);
    }
};

}  // namespace

TEST_CASE("A chain runs on worker 0, which takes its share of its loops, and the caller takes none") {
    const Workers workers(4);
    ThreeLoops chain;
    RunTogether([&] { chain(); });
    CHECK(chain.thread != std::this_thread::get_id());
    const std::vector<std::int32_t> expected{0, 0, 1, 1, 2, 2, 3, 3, 3};
    for (const Log& log : chain.loops) {
        CHECK(log.EachRowOnce());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            CHECK_EQ(log.rows[i].worker, expected[i]);
            CHECK_EQ(log.rows[i].thread == chain.thread, expected[i] == 0);
            CHECK(log.rows[i].thread != std::this_thread::get_id());
        }
    }
}

TEST_CASE("Chains follow each other and plain loops, with pauses in which the workers fall asleep") {
    const Workers workers(3);
    for (int round = 0; round < 20; ++round) {
        ThreeLoops chain;
        RunTogether([&] {
            chain();
            if (round % 5 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
            Log more(0, 70);
            MultiProcessor::Instance().Run(0, 69, Log::Note, &more);
            CHECK(more.EachRowOnce());
        });
        for (const Log& log : chain.loops) CHECK(log.EachRowOnce());
        Log plain(0, 70);
        MultiProcessor::Instance().Run(0, 69, Log::Note, &plain);
        CHECK(plain.EachRowOnce());
        CHECK_FALSE(plain.SerialHere());
    }
}

TEST_CASE("With one worker, and within a loop, a chain runs on the thread that asks for it") {
    ThreeLoops chain;
    {
        const Workers workers(1);
        RunTogether([&] { chain(); });
    }
    CHECK(chain.thread == std::this_thread::get_id());
    for (const Log& log : chain.loops) CHECK(log.SerialHere());

    const Workers workers(2);
    std::array<ThreeLoops, 6> inner;
    std::array<std::thread::id, 6> rows;
    auto run = [&](std::int32_t row) {
        rows[static_cast<std::size_t>(row)] = std::this_thread::get_id();
        RunTogether([&] { inner[static_cast<std::size_t>(row)](); });
    };
    MultiProcessor::Instance().Run(
        0, 5, [](std::int32_t row, void* userData, std::int32_t) { (*static_cast<decltype(run)*>(userData))(row); },
        &run);
    for (std::size_t row = 0; row < 6; ++row) {
        CHECK(inner[row].thread == rows[row]);
        for (const Log& log : inner[row].loops) CHECK(log.EachRowOnce());
    }
}

TEST_CASE("A loop within a chain's loop, and one of another thread, run serially") {
    const Workers workers(2);
    Log other(0, 40);
    bool otherIsSerial = false;
    std::deque<Log> inner;
    for (int i = 0; i < 6; ++i) inner.emplace_back(0, 40U);
    RunTogether([&] {
        MultiProcessor::Instance().Run(
            0, 5,
            [](std::int32_t row, void* userData, std::int32_t) {
                Log& log = (*static_cast<std::deque<Log>*>(userData))[static_cast<std::size_t>(row)];
                MultiProcessor::Instance().Run(0, 39, Log::Note, &log);
            },
            &inner);
        std::thread([&] {
            MultiProcessor::Instance().Run(0, 39, Log::Note, &other);
            otherIsSerial = other.SerialHere();
        }).join();
    });
    CHECK(otherIsSerial);
    for (const Log& log : inner) {
        CHECK(log.EachRowOnce());
        for (const auto& entry : log.rows) {
            CHECK_EQ(entry.worker, 0);
            CHECK(entry.thread == log.rows[0].thread);
        }
    }
}

TEST_CASE("What a chain throws comes out where it was asked for, and the runner goes on") {
    for (const std::int32_t count : {1, 3}) {
        const Workers workers(count);
        CHECK_THROWS_WITH_AS(RunTogether([] { throw std::runtime_error("torn"); }), "torn", std::runtime_error);
        Log log(0, 70);
        MultiProcessor::Instance().Run(0, 69, Log::Note, &log);
        CHECK(log.EachRowOnce());
        CHECK_EQ(log.SerialHere(), count == 1);
    }
}

#ifdef __unix__
TEST_CASE("A process that was forked while the runner had workers has a runner of its own") {
    const Workers workers(2);
    Log here(0, 70);
    MultiProcessor::Instance().Run(0, 69, Log::Note, &here);
    const pid_t child = fork();
    if (child == 0) {
        Log there(0, 70);
        ThreeLoops chain;
        MultiProcessor::Instance().Run(0, 69, Log::Note, &there);
        RunTogether([&] { chain(); });
        _exit(there.EachRowOnce() && chain.loops.back().EachRowOnce() ? 0 : 1);
    }
    REQUIRE_GT(child, 0);
    int status = -1;
    REQUIRE_EQ(waitpid(child, &status, 0), child);
    CHECK(WIFEXITED(status));
    CHECK_EQ(WEXITSTATUS(status), 0);
    Log again(0, 70);
    MultiProcessor::Instance().Run(0, 69, Log::Note, &again);
    CHECK(again.EachRowOnce());
    CHECK_FALSE(again.SerialHere());
}
#endif
