#pragma once

#include <cstdio>

#include "tests/kel/probe.h"

namespace kel::testing {

// Takes what this program writes to `stderr` away, so that lines which a test provokes on purpose do not look like its
// failure. Sanitizers write past the stream and are still heard.
class UnheardReports {
public:
    UnheardReports() { stderr = m_nowhere; }
    ~UnheardReports() {
        stderr = m_heard;
        std::fclose(m_nowhere);
    }
    UnheardReports(const UnheardReports&) = delete;
    UnheardReports& operator=(const UnheardReports&) = delete;
    UnheardReports(UnheardReports&&) = delete;
    UnheardReports& operator=(UnheardReports&&) = delete;

private:
    std::FILE* m_heard = stderr;
    std::FILE* m_nowhere = std::fopen("/dev/null", "w");
};

// A probed host for what modules do wrong: its reports are read from it, and heard nowhere else.
class MisusedHost : UnheardReports, public ProbedHost {
public:
    using ProbedHost::ProbedHost;
};

}  // namespace kel::testing
