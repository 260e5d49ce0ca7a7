#include "module/memory_report.h"

#include <cstdio>

namespace chalkpane {

void ReportMemoryFailures(PluginInstance& instance) noexcept {
    for (std::uint32_t left = instance.telestrator.memory.TakeFailures(); left > 0; --left) {
        std::fputs("Chalkpane Exception: No Memory left!\n", stdout);
    }
}

}  // namespace chalkpane
