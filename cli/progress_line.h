#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace cli {

// A line on standard error that says how far a long work has come, "field 3 of 20" behind a bar, rewritten in place and
// wiped at the end. Silent when standard error is not a terminal.
class ProgressLine {
public:
    // noun: what is counted, such as "field"; count: how many there will be
    ProgressLine(std::string noun, std::int64_t count);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    ProgressLine(ProgressLine&&) = delete;
    ProgressLine& operator=(ProgressLine&&) = delete;

    void Show(std::int64_t done);

private:
    std::string m_noun;
    std::int64_t m_count;
    bool m_isTerminal;
    std::chrono::steady_clock::time_point m_nextTime;
};

}  // namespace cli
