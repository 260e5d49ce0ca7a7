#pragma once

#include <cstdint>

namespace chalkpane::testing {

// While it lives, counts the allocations of this thread and fails the one of the given number, from 0. The hook stands
// in the test program's operator new and calloc.
class AllocationFailure {
public:
    static constexpr std::int64_t never = -1;

    explicit AllocationFailure(std::int64_t number);
    ~AllocationFailure();
    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;

    [[nodiscard]] std::int64_t Count() const;
    [[nodiscard]] bool HasFailed() const;
};

}  // namespace chalkpane::testing
