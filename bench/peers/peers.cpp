#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "bench/peers/peer_work.h"
#include "chalkpane/base/multi_processor.h"

// This engine and its peers on the same pictures in one program. Both are called in turn, a short while each, and the
// shortest processor time of each counts, so that whatever else the machine does meets both.
//
//   peers [--once] [part of a name or a peer]...
//
// Without a word it is all works. --once: each work once, to compare the results alone. Exit code 1 where results that
// should be alike are not.
namespace {

using namespace chalkpane;
using peers::PeerWork;

// Of all threads: one library works on threads of its own, even where it is told to use but one.
double ProcessorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Calls that take some 200 microseconds together.
int CallsOf(const std::function<void()>& work) {
    for (int calls = 1;; calls *= 2) {
        const double start = ProcessorSeconds();
        for (int i = 0; i < calls; ++i) work();
        if (ProcessorSeconds() - start > 100e-6) return calls > 1 ? calls * 2 : 1;
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
    constexpr double longEnough = 2.0;  // seconds, for works of which a single call takes long
    constexpr int fewestRounds = 7;
    const double start = ProcessorSeconds();
    const int theirCalls = CallsOf(work.theirs);
    const int ourCalls = CallsOf(work.ours);
    Times times;
    for (int round = 0; round < rounds; ++round) {
        if (round >= fewestRounds && ProcessorSeconds() - start > longEnough) break;
        times.theirs = std::min(times.theirs, NanosecondsPerCall(work.theirs, theirCalls));
        times.ours = std::min(times.ours, NanosecondsPerCall(work.ours, ourCalls));
    }
    return times;
}

std::vector<PeerWork> AllWorks() {
    std::vector<PeerWork> all = peers::PixmanWorks();
    [[maybe_unused]] const auto append = [&all](std::vector<PeerWork> works) {
        all.insert(all.end(), std::make_move_iterator(works.begin()), std::make_move_iterator(works.end()));
    };
#if defined(WITH_MYPAINT)
    append(peers::MyPaintWorks());
#endif
#if defined(WITH_OPENCV)
    append(peers::OpenCvWorks());
    append(peers::CircleWorks());
#endif
#if defined(WITH_VIPS)
    append(peers::VipsWorks());
#endif
#if defined(WITH_MAGICK)
    append(peers::MagickWorks());
#endif
#if defined(WITH_GEGL)
    append(peers::GeglWorks());
#endif
    return all;
}

bool IsAskedFor(const PeerWork& work, const std::vector<std::string>& words) {
    return words.empty() || std::any_of(words.begin(), words.end(), [&work](const std::string& word) {
               return (work.name + " " + work.peer).find(word) != std::string::npos;
           });
}

// False where results that should be alike are not.
bool Compare(const PeerWork& work) {
    work.theirs();
    work.ours();
    const double apart = work.apart();
    if (apart <= work.mostApart) return true;
    std::printf("%-24s %-8s results are %.2f apart, at most %.2f are expected\n", work.name.c_str(), work.peer.c_str(),
                apart, work.mostApart);
    return false;
}

void Print(const PeerWork& work, const Times& times) {
    std::printf("%-24s %-8s %9.2f ns %9.2f ns %8.3f   per %s\n", work.name.c_str(), work.peer.c_str(),
                times.theirs / work.units, times.ours / work.units, times.ours / times.theirs, work.unit.c_str());
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> words(argv + 1, argv + argc);
    const bool once = std::erase(words, "--once") > 0;
    if (const auto option = std::find_if(words.begin(), words.end(), [](const auto& word) { return word[0] == '-'; });
        option != words.end()) {
        std::fprintf(stderr, "peers: \"%s\" is no option; there is --once\n", option->c_str());
        return 2;
    }
    MultiProcessor::Restart(1);
    std::vector<PeerWork> works = AllWorks();
    std::erase_if(works, [&words](const PeerWork& work) { return !IsAskedFor(work, words); });
    if (works.empty()) {
        std::fprintf(stderr, "peers: no work or peer has such a name\n");
        return 2;
    }
    bool alike = true;
    std::printf("%-24s %-8s %12s %12s %8s\n", "work", "peer", "theirs", "ours", "ratio");
    for (const PeerWork& work : works) {
        if (!Compare(work))
            alike = false;
        else if (!once)
            Print(work, Measure(work));
    }
    return alike ? 0 : 1;
}
