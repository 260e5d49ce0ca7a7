#include "cli/worker_processes.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <new>
#include <stdexcept>
#include <thread>
#include <vector>

#include "cli/error.h"
#include "cli/open_file.h"

namespace cli {
namespace {

enum class Outcome : std::uint8_t { Done, Refused, NoMemory, Failed };

// Small enough for a pipe to take it whole whatever the other workers write.
struct Report {
    Outcome outcome = Outcome::Done;
    std::array<char, 500> message{};
};
static_assert(sizeof(Report) <= PIPE_BUF);

// The number of the next task, which all workers see.
class SharedCounter {
public:
    SharedCounter()
        : m_place(mmap(nullptr, sizeof(std::atomic<std::size_t>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                       -1, 0)) {
        if (m_place == MAP_FAILED) throw std::bad_alloc();
        new (m_place) std::atomic<std::size_t>(0);
    }
    ~SharedCounter() { munmap(m_place, sizeof(std::atomic<std::size_t>)); }
    SharedCounter(const SharedCounter&) = delete;
    SharedCounter& operator=(const SharedCounter&) = delete;
    SharedCounter(SharedCounter&&) = delete;
    SharedCounter& operator=(SharedCounter&&) = delete;

    std::atomic<std::size_t>& Value() { return *static_cast<std::atomic<std::size_t>*>(m_place); }

private:
    void* m_place;
};

Report ReportOf(Outcome outcome, const char* message) {
    Report report{outcome, {}};
    std::strncpy(report.message.data(), message, report.message.size() - 1);
    return report;
}

Report ReportOn(const std::function<void(std::size_t)>& task, std::size_t index) {
    try {
        task(index);
        return {};
    } catch (const Error& error) {
        return ReportOf(Outcome::Refused, error.what());
    } catch (const std::bad_alloc&) {
        return ReportOf(Outcome::NoMemory, "");
    } catch (const std::exception& error) {
        return ReportOf(Outcome::Failed, error.what());
    }
}

// Never returns: what this process would do at its end belongs to the one that it is a copy of.
[[noreturn]] void Work(std::size_t count, std::atomic<std::size_t>& next, int reports, pid_t parent,
                       const std::function<void(std::size_t)>& task) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, SIG_DFL);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(1);
    for (std::size_t index = next++; index < count; index = next++) {
        const Report report = ReportOn(task, index);
        if (write(reports, &report, sizeof(report)) != static_cast<ssize_t>(sizeof(report))) break;
        if (report.outcome != Outcome::Done) break;
    }
    _exit(0);
}

// Ended at the latest with this.
class Workers {
public:
    ~Workers() {
        for (const pid_t worker : m_workers) kill(worker, SIGKILL);
        for (const pid_t worker : m_workers) Wait(worker);
    }
    Workers() = default;
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;
    Workers(Workers&&) = delete;
    Workers& operator=(Workers&&) = delete;

    template <typename Start>
    void Add(Start start) {
        m_workers.reserve(m_workers.size() + 1);
        const pid_t parent = getpid();
        const pid_t worker = fork();
        if (worker == 0) start(parent);
        if (worker > 0) m_workers.push_back(worker);
    }
    [[nodiscard]] bool IsEmpty() const { return m_workers.empty(); }

private:
    static void Wait(pid_t worker) {
        while (waitpid(worker, nullptr, 0) < 0 && errno == EINTR) continue;
    }

    std::vector<pid_t> m_workers;
};

void Throw(const Report& report) {
    switch (report.outcome) {
        case Outcome::Done:
            return;
        case Outcome::Refused:
            throw Error(report.message.data());
        case Outcome::NoMemory:
            throw std::bad_alloc();
        case Outcome::Failed:
            throw std::runtime_error(report.message.data());
    }
}

}  // namespace

void RunInProcesses(std::size_t count, const std::function<void(std::size_t)>& task,
                    const std::function<void(std::size_t)>& done) {
    SharedCounter next;
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("there can be no pipe");
    const OpenFile incoming(ends[0]);
    OpenFile outgoing(ends[1]);
    Workers workers;
    const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
    for (std::size_t i = 0; i < std::min(count, processors); ++i)
        workers.Add([&](pid_t parent) { Work(count, next.Value(), ends[1], parent, task); });
    if (workers.IsEmpty()) throw std::runtime_error("no process can be started");
    (void)outgoing.Close();
    for (std::size_t finished = 0; finished < count;) {
        pollfd waiting{ends[0], POLLIN, 0};
        done(finished);
        if (poll(&waiting, 1, 100) <= 0) continue;
        Report report;
        const ssize_t got = read(ends[0], &report, sizeof(report));
        if (got < 0 && errno == EINTR) continue;
        // All workers are gone, the last of them ended by somebody else, such as a system without memory.
        if (got != static_cast<ssize_t>(sizeof(report))) throw std::bad_alloc();
        Throw(report);
        ++finished;
    }
    done(count);
}

}  // namespace cli
