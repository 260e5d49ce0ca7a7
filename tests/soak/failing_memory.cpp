// Fails one allocation after the other of the first events of a soak's episodes: soak_memory EPISODES [SEED]. After
// each failure the instance lives on to the end of its events. Ends with 1 when one of them left host objects behind; a
// crash or a leak tells itself.

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>

#include "tests/soak/soak_episode.h"
#include "tests/telestrator/allocation_failure.h"

namespace chalkpane::soak {
namespace {

constexpr int eventsOfEach = 60;

// Of the many that a stroke's dabs make alike, later ones in strides.
constexpr std::int64_t Next(std::int64_t allocation) {
    constexpr std::int64_t eachOfTheFirst = 100;
    return allocation + (allocation < eachOfTheFirst ? 1 : 1 + allocation / 10);
}

// True when the allocation of this number was asked for, and so failed.
bool RunWithout(std::uint32_t seed, std::int64_t episodeNumber, std::int64_t allocation, std::int64_t& objectsLeft) {
    Episode episode(seed, episodeNumber);
    bool hasFailed = false;
    {
        const testing::AllocationFailure failure(allocation);
        for (int i = 0; i < eventsOfEach; ++i) {
            try {
                (void)episode.Step();
            } catch (const std::bad_alloc&) {  // the host's own, for a change of its answers
                continue;
            }
        }
        hasFailed = failure.HasFailed();
    }
    objectsLeft += episode.End();
    return hasFailed;
}

int FailAll(std::int64_t episodes, std::uint32_t seed) {
    std::int64_t failures = 0;
    std::int64_t objectsLeft = 0;
    for (std::int64_t episode = 0; episode < episodes; ++episode)
        for (std::int64_t allocation = 0; RunWithout(seed, episode, allocation, objectsLeft);
             allocation = Next(allocation))
            ++failures;
    std::fprintf(stderr, "soak_memory: seed %u: %lld episodes, %lld failed allocations, host objects left %lld\n", seed,
                 static_cast<long long>(episodes), static_cast<long long>(failures),
                 static_cast<long long>(objectsLeft));
    return objectsLeft == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace
}  // namespace chalkpane::soak

int main(int argc, char** argv) {
    try {
        if (argc < 2 || argc > 3) throw std::runtime_error("how it is run: soak_memory EPISODES [SEED]");
        const auto seed = static_cast<std::uint32_t>(argc > 2 ? std::stoul(argv[2]) : 1);
        return chalkpane::soak::FailAll(std::stoll(argv[1]), seed);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "soak_memory: %s\n", failure.what());
        return 2;
    }
}
