#pragma once

#include <array>
#include <csignal>
#include <stdexcept>

namespace cli {

// The operator has stopped the work; the program ends with that code.
struct Interrupted : std::runtime_error {
    explicit Interrupted(int code) : std::runtime_error("interrupted"), exitCode(code) {}
    int exitCode;
};

// Lets the operator stop a long work at a place of its own choosing, so that no temporary files stay behind: INT, TERM
// and HUP are taken note of, but for those that the program was started to ignore. One at a time.
class InterruptGuard {
public:
    InterruptGuard() {
        received = 0;
        for (std::size_t i = 0; i < signals.size(); ++i) {
            struct sigaction action {};
            sigaction(signals[i], nullptr, &m_before[i]);
            action.sa_handler = [](int signal) { received = signal; };
            if (m_before[i].sa_handler != SIG_IGN) sigaction(signals[i], &action, nullptr);
        }
    }
    ~InterruptGuard() {
        for (std::size_t i = 0; i < signals.size(); ++i) sigaction(signals[i], &m_before[i], nullptr);
    }
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;
    InterruptGuard(InterruptGuard&&) = delete;
    InterruptGuard& operator=(InterruptGuard&&) = delete;

    [[nodiscard]] static bool IsInterrupted() { return received != 0; }
    static void ThrowIfInterrupted() {
        if (IsInterrupted()) throw Interrupted(128 + received);  // as a shell tells of the signal
    }

private:
    static constexpr std::array signals{SIGINT, SIGTERM, SIGHUP};
    static inline volatile std::sig_atomic_t received = 0;

    std::array<struct sigaction, signals.size()> m_before{};
};

}  // namespace cli
