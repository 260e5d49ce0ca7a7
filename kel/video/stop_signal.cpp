#include "kel/video/stop_signal.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "cli/error.h"

namespace kel {

StopSignal::StopSignal() : m_handle(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (m_handle < 0) throw cli::Error("the system has no more handles for a live output");
}

StopSignal::~StopSignal() { close(m_handle); }

void StopSignal::Raise() const {
    const std::uint64_t one = 1;
    // A counter that is full is raised already.
    [[maybe_unused]] const auto written = write(m_handle, &one, sizeof one);
}

bool StopSignal::WaitFor(int milliseconds) const {
    pollfd waiting{m_handle, POLLIN, 0};
    int result = 0;
    do result = poll(&waiting, 1, milliseconds);
    while (result < 0 && errno == EINTR);
    return result > 0;
}

}  // namespace kel
