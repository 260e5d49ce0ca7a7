#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <mutex>

namespace picture_io {

// For the length of a call of a library that writes to standard error itself, nothing is written there: what is wrong
// with a file is one line, and the caller's. One call at a time; what other threads say meanwhile is lost too.
class SilentLibrary {
public:
    SilentLibrary() : m_lock(Mutex()), m_kept(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0)) {
        const int nowhere = m_kept < 0 ? -1 : open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (nowhere < 0) return;
        dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }
    ~SilentLibrary() {
        if (m_kept < 0) return;
        dup2(m_kept, STDERR_FILENO);
        close(m_kept);
    }
    SilentLibrary(const SilentLibrary&) = delete;
    SilentLibrary& operator=(const SilentLibrary&) = delete;
    SilentLibrary(SilentLibrary&&) = delete;
    SilentLibrary& operator=(SilentLibrary&&) = delete;

private:
    static std::mutex& Mutex() {
        static std::mutex mutex;
        return mutex;
    }

    std::lock_guard<std::mutex> m_lock;
    int m_kept;  // below 0: standard error is closed, or there is no descriptor left
};

}  // namespace picture_io
