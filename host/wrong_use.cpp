#include "host/wrong_use.h"

#include <cstdio>

namespace kel {

void WrongUseLog::Report(WrongUse kind, const std::string& what) {
    bool& reported = m_reported[static_cast<std::size_t>(kind)];
    if (reported) return;
    reported = true;
    m_lines.push_back("kel: wrong use by a module: " + what + " (reported once)");
    std::fprintf(stderr, "%s\n", m_lines.back().c_str());
}

}  // namespace kel
