#pragma once

#include <cstdint>
#include <string>

namespace cli {

// What an input is going to take in memory, counted from what its files say of themselves, before any of it is taken.
class MemoryBudget {
public:
    // The half of what this machine has.
    [[nodiscard]] static std::uint64_t HalfOfTheMachine();

    // what: as a message calls it, `the picture "a.png"`. Never throws for a sum that is too large to be a number.
    void Count(double bytes, const std::string& what);

    // Throws Error when all that was counted is more than `allowed` bytes, naming `where`, the sum and the largest
    // part.
    void Check(std::uint64_t allowed, const std::string& where) const;

private:
    double m_sum = 0.0;  // bytes
    double m_largest = 0.0;
    std::string m_largestPart;
};

}  // namespace cli
