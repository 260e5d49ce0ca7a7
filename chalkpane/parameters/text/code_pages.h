#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace chalkpane {

// The two code pages in which old texts come: that of western Windows, which stands for "the system's", and the
// Macintosh's.
enum class CodePage : std::uint8_t { System, Macintosh };

std::string utf8From(CodePage page, std::string_view text);

}  // namespace chalkpane
