#pragma once

#include <csignal>

namespace cli {

// Lets the operator stop a long work at a place of its own choosing, so that no temporary files stay behind. One at a
// time.
class InterruptGuard {
public:
    static constexpr int exitCode = 128 + SIGINT;

    InterruptGuard() : m_before(std::signal(SIGINT, [](int) { interrupted = 1; })) {}
    ~InterruptGuard() { std::signal(SIGINT, m_before); }
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;
    InterruptGuard(InterruptGuard&&) = delete;
    InterruptGuard& operator=(InterruptGuard&&) = delete;

    [[nodiscard]] static bool IsInterrupted() { return interrupted != 0; }

private:
    static inline volatile std::sig_atomic_t interrupted = 0;

    void (*m_before)(int);
};

}  // namespace cli
