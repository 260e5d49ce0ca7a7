#include "cli/memory_budget.h"

#include <unistd.h>

#include <array>
#include <cstdio>

#include "cli/error.h"

namespace cli {
namespace {

std::string Shown(double bytes) {
    constexpr double gibibyte = 1024.0 * 1024.0 * 1024.0;
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), bytes < gibibyte ? "%.0f MiB" : "%.1f GiB",
                  bytes / (bytes < gibibyte ? 1024.0 * 1024.0 : gibibyte));
    return text.data();
}

}  // namespace

std::uint64_t MemoryBudget::HalfOfTheMachine() {
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageSize <= 0) return std::uint64_t{1} << 30U;
    return static_cast<std::uint64_t>(pages) / 2 * static_cast<std::uint64_t>(pageSize);
}

void MemoryBudget::Count(double bytes, const std::string& what) {
    m_sum += bytes;
    if (bytes <= m_largest) return;
    m_largest = bytes;
    m_largestPart = what;
}

void MemoryBudget::Check(std::uint64_t allowed, const std::string& where) const {
    if (m_sum <= static_cast<double>(allowed)) return;
    throw Error(where, {},
                "takes " + Shown(m_sum) + " of memory, " + Shown(m_largest) + " of it for " + m_largestPart + "; " +
                    Shown(static_cast<double>(allowed)) + " are allowed (--memory)");
}

}  // namespace cli
