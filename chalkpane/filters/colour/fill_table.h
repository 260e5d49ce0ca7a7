#pragma once

#include <cstdint>

#include "chalkpane/base/multi_processor.h"

namespace chalkpane {

// Calls `entry` for each channel value 0 .. last, on the workers where the values are many: an entry of a table takes
// as long as some dozen pixels of other work. Calls for different values go on at the same time.
template <typename Entry>
void FillTable(std::int32_t last, Entry entry) {
    const auto row = [](std::int32_t value, void* userData, std::int32_t /*worker*/) {
        (*static_cast<Entry*>(userData))(value);
    };
    RunInBands(0, last, 16, row, &entry);
}

}  // namespace chalkpane
