#pragma once

namespace kel {

// Ends every wait of another thread, now and from now on. Raised by any thread, once and for all.
class StopSignal {
public:
    StopSignal();  // throws Error when the system has no more handles
    ~StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;
    StopSignal(StopSignal&&) = delete;
    StopSignal& operator=(StopSignal&&) = delete;

    void Raise() const;
    [[nodiscard]] bool IsRaised() const { return WaitFor(0); }
    // True: it was raised within that time.
    [[nodiscard]] bool WaitFor(int milliseconds) const;
    // Readable for poll once it is raised.
    [[nodiscard]] int Handle() const { return m_handle; }

private:
    int m_handle;
};

}  // namespace kel
