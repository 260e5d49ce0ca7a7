#include "kel/scene/wrong_use.h"

#include <algorithm>
#include <cstdio>

namespace kel {

void WrongUseLog::Report(WrongUse kind, const std::string& what) {
    bool& reported = m_reported[static_cast<std::size_t>(kind)];
    if (reported) return;
    reported = true;
    std::string& line = m_lines.emplace_back("kel: wrong use by a module: " + what + " (reported once)");
    // Names come from the module and may hold anything; a report is one line all the same.
    std::ranges::replace_if(
        line, [](unsigned char letter) { return letter < 0x20 || letter == 0x7F; }, ' ');
    std::fprintf(stderr, "%s\n", line.c_str());
}

}  // namespace kel
