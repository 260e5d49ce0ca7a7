#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace cli {

// The words of a command line as the parser is to have them, the program's name left out: "help COMMAND" becomes
// "COMMAND --help". Throws Error for a command or an option that there is none of, and names the nearest.
[[nodiscard]] std::vector<std::string> CheckedWords(const CLI::App& program, int argc, char** argv);

// What to say of words that the parser has no use for, in the order typed.
[[nodiscard]] std::string UnexpectedWords(const CLI::App& program, const std::vector<std::string>& typed);

}  // namespace cli
