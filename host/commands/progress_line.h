#pragma once

#include <chrono>
#include <cstdint>

namespace kel {

// A line on standard error that says how far a session has been played, rewritten in place and wiped at the end. Silent
// when standard error is not a terminal.
class ProgressLine {
public:
    explicit ProgressLine(std::int64_t fields);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    ProgressLine(ProgressLine&&) = delete;
    ProgressLine& operator=(ProgressLine&&) = delete;

    // played: fields so far
    void Show(std::int64_t played);

private:
    std::int64_t m_fields;
    bool m_isTerminal;
    std::chrono::steady_clock::time_point m_nextTime;
};

}  // namespace kel
