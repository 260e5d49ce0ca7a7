#include "host/commands/progress_line.h"

#include <unistd.h>

#include <cstdio>

namespace kel {
namespace {

constexpr auto interval = std::chrono::milliseconds(100);

}  // namespace

ProgressLine::ProgressLine(std::int64_t fields) : m_fields(fields), m_isTerminal(isatty(STDERR_FILENO) != 0) {}

ProgressLine::~ProgressLine() {
    if (m_isTerminal) std::fputs("\r\033[K", stderr);
}

void ProgressLine::Show(std::int64_t played) {
    if (!m_isTerminal) return;
    const auto now = std::chrono::steady_clock::now();
    if (now < m_nextTime && played < m_fields) return;
    m_nextTime = now + interval;
    std::fprintf(stderr, "\rfield %lld of %lld", static_cast<long long>(played), static_cast<long long>(m_fields));
    std::fflush(stderr);
}

}  // namespace kel
