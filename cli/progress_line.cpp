#include "cli/progress_line.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace cli {
namespace {

constexpr auto interval = std::chrono::milliseconds(100);
constexpr int barWidth = 30;

}  // namespace

ProgressLine::ProgressLine(std::string noun, std::int64_t count)
    : m_noun(std::move(noun)), m_count(count), m_isTerminal(isatty(STDERR_FILENO) != 0) {}

ProgressLine::~ProgressLine() {
    if (m_isTerminal) std::fputs("\r\033[K", stderr);
}

void ProgressLine::Show(std::int64_t done) {
    if (!m_isTerminal) return;
    const auto now = std::chrono::steady_clock::now();
    if (now < m_nextTime && done < m_count) return;
    m_nextTime = now + interval;
    const std::int64_t part = m_count > 0 ? barWidth * done / m_count : barWidth;  // of nothing, all is done
    const auto filled = static_cast<std::size_t>(std::clamp<std::int64_t>(part, 0, barWidth));
    const std::string bar = std::string(filled, '#') + std::string(barWidth - filled, '.');
    std::fprintf(stderr, "\r[%s] %s %lld of %lld", bar.c_str(), m_noun.c_str(), static_cast<long long>(done),
                 static_cast<long long>(m_count));
    std::fflush(stderr);
}

}  // namespace cli
