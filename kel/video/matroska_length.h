#pragma once

#include <filesystem>

namespace kel {

// True: the file is a Matroska or WebM video that says itself that it is longer than it is. The library reads such a
// video up to where it breaks off and then takes that for its end. Videos that never knew their length, such as
// recordings of something live, are taken as they are.
[[nodiscard]] bool IsCutOffMatroska(const std::filesystem::path& file);

}  // namespace kel
