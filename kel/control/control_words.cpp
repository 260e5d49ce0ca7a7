#include "kel/control/control_words.h"

#include <algorithm>

#include "cli/error.h"

namespace kel {
namespace {

constexpr std::string_view blanks = " \t";

bool IsBlank(char letter) { return blanks.find(letter) != std::string_view::npos; }

bool IsControl(char letter) {
    const auto code = static_cast<unsigned char>(letter);
    return (code < 0x20 && letter != '\t') || code == 0x7F;
}

// Takes a word that begins with a quote from the line.
std::string TakeQuoted(std::string_view& line) {
    std::string word;
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line[i] == '"') {
            line.remove_prefix(i + 1);
            if (!line.empty() && !IsBlank(line.front())) throw cli::Error("a blank is missing behind the quotes");
            return word;
        }
        if (line[i] == '\\') {
            ++i;
            if (i == line.size() || (line[i] != '"' && line[i] != '\\'))
                throw cli::Error("a backslash between quotes stands before a quote or a backslash");
        }
        word += line[i];
    }
    throw cli::Error("the quotes do not end");
}

std::string TakePlain(std::string_view& line) {
    const std::size_t length = std::min(line.find_first_of(blanks), line.size());
    std::string word(line.substr(0, length));
    if (word.find('"') != std::string::npos) throw cli::Error("a quote stands inside a word");
    line.remove_prefix(length);
    return word;
}

}  // namespace

std::vector<std::string> SplitControlWords(std::string_view line) {
    if (line.size() > longestControlLine)
        throw cli::Error("the command is longer than " + std::to_string(longestControlLine) + " bytes");
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (std::ranges::any_of(line, IsControl)) throw cli::Error("the command holds control characters");
    std::vector<std::string> words;
    while (true) {
        line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
        if (line.empty()) return words;
        words.push_back(line.front() == '"' ? TakeQuoted(line) : TakePlain(line));
    }
}

std::string ControlWordText(std::string_view word) {
    if (!word.empty() && word.find_first_of(" \t\"") == std::string_view::npos) return std::string(word);
    std::string text = "\"";
    for (const char letter : word) {
        if (letter == '"' || letter == '\\') text += '\\';
        text += letter;
    }
    return text + '"';
}

}  // namespace kel
