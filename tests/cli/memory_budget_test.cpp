#include "cli/memory_budget.h"

#include <doctest/doctest.h>
#include <unistd.h>

#include "tests/cli/thrown.h"

namespace cli {

TEST_CASE("A budget takes what is allowed and refuses more with the sum and the largest part") {
    constexpr double mebibyte = 1 << 20;
    MemoryBudget budget;
    budget.Count(100 * mebibyte, "the window");
    budget.Count(1536 * mebibyte, "the picture \"a.png\"");
    budget.Count(412 * mebibyte, "the picture \"b.png\"");
    const std::uint64_t sum = std::uint64_t{2048} << 20U;  // 100 + 1536 + 412
    CHECK_EQ(testing::Thrown([&] { budget.Check(sum, "s.json"); }), "nothing");
    CHECK_EQ(
        testing::Thrown([&] { budget.Check(sum - 1, "s.json"); }),
        "s.json: takes 2.0 GiB of memory, 1.5 GiB of it for the picture \"a.png\"; 2.0 GiB are allowed (--memory)");
    CHECK_EQ(
        testing::Thrown([&] { budget.Check(sum / 4, "s.json"); }),
        "s.json: takes 2.0 GiB of memory, 1.5 GiB of it for the picture \"a.png\"; 512 MiB are allowed (--memory)");
}

TEST_CASE("Half of the machine is half of its pages") {
    const auto whole =
        static_cast<std::uint64_t>(sysconf(_SC_PHYS_PAGES)) * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    CHECK_LE(MemoryBudget::HalfOfTheMachine(), whole / 2);
    CHECK_GT(MemoryBudget::HalfOfTheMachine(), whole / 2 - static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)));
}

}  // namespace cli
