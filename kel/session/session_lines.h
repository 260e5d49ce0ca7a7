#pragma once

#include <string>

namespace kel {

// What the window records grows line by line: the first line is the session without its events, each line after it an
// event, or {"fields": N}, which says that so many have been played by then. Whatever ends the program leaves a
// session: a last line that is not whole is not there.
//
// The session as one JSON object; text that is in no such lines stays as it is. Lines keep their numbers, so messages
// about broken JSON tell the line of the file.
[[nodiscard]] std::string WholeSessionText(std::string text);

}  // namespace kel
