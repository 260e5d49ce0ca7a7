#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "bench/peers/peer_work.h"
#include "chalkpane/base/multi_processor.h"

// This engine and its peers on the same pictures in one program. Both are called in turn, a short while each, and the
// shortest processor time of each counts, so that whatever else the machine does meets both.
//
//   peers           the table
//   peers --once    each work once, to compare the results alone
//
// Exit code 1 where results that should be alike are not.
namespace {

using namespace chalkpane;
using peers::PeerWork;

double ProcessorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Calls that take some 200 microseconds together.
int CallsOf(const std::function<void()>& work) {
    for (int calls = 1;; calls *= 2) {
        const double start = ProcessorSeconds();
        for (int i = 0; i < calls; ++i) work();
        if (ProcessorSeconds() - start > 100e-6) return calls * 2;
    }
}

double NanosecondsPerCall(const std::function<void()>& work, int calls) {
    const double start = ProcessorSeconds();
    for (int i = 0; i < calls; ++i) work();
    return (ProcessorSeconds() - start) * 1e9 / calls;
}

struct Times {
    double theirs = 1e18;
    double ours = 1e18;
};

Times Measure(const PeerWork& work) {
    constexpr int rounds = 200;
    const int theirCalls = CallsOf(work.theirs);
    const int ourCalls = CallsOf(work.ours);
    Times times;
    for (int round = 0; round < rounds; ++round) {
        times.theirs = std::min(times.theirs, NanosecondsPerCall(work.theirs, theirCalls));
        times.ours = std::min(times.ours, NanosecondsPerCall(work.ours, ourCalls));
    }
    return times;
}

}  // namespace

int main(int argc, char** argv) {
    const bool once = argc == 2 && std::strcmp(argv[1], "--once") == 0;
    if (argc > 1 && !once) {
        std::fprintf(stderr, "peers: \"%s\" is no option; there is --once\n", argv[1]);
        return 2;
    }
    MultiProcessor::Restart(1);
    bool alike = true;
    std::printf("%-24s %-8s %12s %12s %8s\n", "work", "peer", "theirs", "ours", "ratio");
    for (const PeerWork& work : peers::PixmanWorks()) {
        work.theirs();
        work.ours();
        if (const double apart = work.apart(); apart > work.mostApart) {
            std::printf("%-24s %-8s results are %.2f levels apart, at most %.2f are expected\n", work.name.c_str(),
                        work.peer.c_str(), apart, work.mostApart);
            alike = false;
            continue;
        }
        if (once) continue;
        const Times times = Measure(work);
        std::printf("%-24s %-8s %9.2f ns %9.2f ns %8.2f   per %s\n", work.name.c_str(), work.peer.c_str(),
                    times.theirs / work.units, times.ours / work.units, times.ours / times.theirs, work.unit.c_str());
    }
    return alike ? 0 : 1;
}
