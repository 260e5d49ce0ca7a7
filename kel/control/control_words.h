#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

constexpr std::size_t longestControlLine = std::size_t{64} << 10U;  // bytes

// The words of a command: blanks part them, and a word between double quotes may have blanks inside; there \" is a
// quote and \\ a backslash. Throws Error for a line that is too long, holds control characters, or ends inside quotes.
[[nodiscard]] std::vector<std::string> SplitControlWords(std::string_view line);

// `word` as a line has it: between quotes where it needs them.
[[nodiscard]] std::string ControlWordText(std::string_view word);

}  // namespace kel
