#include "cli/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "cli/error.h"
#include "cli/nearest_name.h"

namespace cli {
namespace {

std::vector<std::string> CommandNames(const CLI::App& program) {
    std::vector<std::string> names;
    for (const CLI::App* const command : program.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(command->get_name());
    return names;
}

std::vector<std::string> OptionNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* const option : command.get_options())
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    return names;
}

bool IsOption(const std::string& word) { return word.size() > 2 && word.starts_with("--"); }

// From `first` on: each option that there is takes the words behind it that it cannot do without.
void CheckOptions(const CLI::App& command, const std::vector<std::string>& words, std::size_t first) {
    for (std::size_t i = first; i < words.size() && words[i] != "--"; ++i) {
        if (!IsOption(words[i])) continue;
        const std::size_t equals = words[i].find('=');
        const std::string name = words[i].substr(0, equals);
        const CLI::Option* const option = command.get_option_no_throw(name);
        if (option == nullptr)
            throw Error("command line: there is no option " + Quoted(name) + NearestHint(name, OptionNames(command)));
        if (equals == std::string::npos) i += static_cast<std::size_t>(std::max(0, option->get_items_expected_min()));
    }
}

}  // namespace

std::vector<std::string> CheckedWords(const CLI::App& program, int argc, char** argv) {
    std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    if (!words.empty() && words.front() == "help") {
        words.erase(words.begin());
        words.insert(words.begin() + (words.empty() ? 0 : 1), "--help");
    }
    if (words.empty() || words.front().starts_with('-')) {
        CheckOptions(program, words, 0);
        return words;
    }
    const auto found = program.get_subcommands([&](const CLI::App* each) { return each->get_name() == words.front(); });
    if (found.empty())
        throw Error("command line: there is no command " + Quoted(words.front()) +
                    NearestHint(words.front(), CommandNames(program)));
    CheckOptions(*found.front(), words, 1);
    return words;
}

std::string UnexpectedWords(const CLI::App& program, const std::vector<std::string>& typed) {
    std::vector<std::string> left = program.remaining(true);
    std::string list;
    std::size_t count = 0;
    for (const std::string& word : typed) {
        const auto found = std::ranges::find(left, word);
        if (found == left.end()) continue;
        left.erase(found);
        list += (list.empty() ? "" : " ") + Quoted(word);
        ++count;
    }
    return list + (count == 1 ? " was not expected" : " were not expected");
}

}  // namespace cli
