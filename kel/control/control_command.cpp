#include "kel/control/control_command.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <span>

#include "cli/error.h"
#include "cli/nearest_name.h"
#include "kel/control/control_words.h"

namespace kel {
namespace {

using Words = std::span<const std::string>;

double Number(const std::string& word, double least, double most) {
    double number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    const bool isNumber = error == std::errc() && end == word.data() + word.size() && std::isfinite(number);
    if (!isNumber) throw cli::Error(cli::Quoted(word) + " is no number");
    if (number < least || number > most) throw cli::Error(cli::Quoted(word) + " is out of range");
    return number;
}

std::int64_t Whole(const std::string& word, std::int64_t least, std::int64_t most) {
    const double number = Number(word, static_cast<double>(least), static_cast<double>(most));
    if (number != std::floor(number)) throw cli::Error(cli::Quoted(word) + " is no whole number");
    return static_cast<std::int64_t>(number);
}

bool Truth(const std::string& word) {
    if (word != "true" && word != "false") throw cli::Error(cli::Quoted(word) + " is neither true nor false");
    return word == "true";
}

void RequirePairs(Words words, const char* form) {
    if (words.empty() || words.size() % 2 != 0) throw cli::Error(std::string("it is written ") + form);
}

NamedTexts Pairs(Words words, const char* form) {
    RequirePairs(words, form);
    NamedTexts pairs;
    for (std::size_t i = 0; i < words.size(); i += 2) pairs.emplace_back(words[i], words[i + 1]);
    return pairs;
}

// The same numbers as a session may have.
constexpr std::int64_t farthestFrame = 1'000'000'000;
constexpr std::int64_t mostStrokes = 1'000'000;
constexpr double farthestPixel = 100'000;

struct VideoWord {
    std::string_view name;
    void (*read)(const std::string& word, VideoChange& change);
};
constexpr auto videoWords = std::to_array<VideoWord>({
    {"frame", [](const std::string& word, VideoChange& change) { change.frame = Whole(word, 0, farthestFrame); }},
    {"play", [](const std::string& word, VideoChange& change) { change.play = Truth(word); }},
    {"loop", [](const std::string& word, VideoChange& change) { change.loop = Truth(word); }},
    {"speed",
     [](const std::string& word, VideoChange& change) { change.speed = Number(word, slowestVideo, fastestVideo); }},
    {"in", [](const std::string& word, VideoChange& change) { change.in = Whole(word, 0, farthestFrame); }},
    {"out", [](const std::string& word, VideoChange& change) { change.out = Whole(word, 0, farthestFrame); }},
});

VideoChange ReadVideo(Words words, const char* form) {
    RequirePairs(words, form);
    VideoChange change;
    for (std::size_t i = 0; i < words.size(); i += 2) {
        const auto* found = std::ranges::find(videoWords, words[i], &VideoWord::name);
        if (found == videoWords.end()) {
            std::vector<std::string> names;
            names.reserve(videoWords.size());
            for (const VideoWord& each : videoWords) names.emplace_back(each.name);
            throw cli::Error("a film has no " + cli::Quoted(words[i]) + cli::NearestHint(words[i], names));
        }
        found->read(words[i + 1], change);
    }
    return change;
}

template <InkEditKind kind>
ControlCommand ReadCount(Words words, const char*) {
    StrokeCommand command;
    command.kind = kind;
    command.number = static_cast<std::size_t>(Whole(words[0], 1, mostStrokes));
    return command;
}

ControlCommand ReadMove(Words words, const char* form) {
    if (words[1] != "by") throw cli::Error(std::string("it is written ") + form);
    StrokeCommand command = std::get<StrokeCommand>(ReadCount<InkEditKind::Move>(words, form));
    const auto pixels = [](const std::string& word) {
        return static_cast<std::int32_t>(std::lround(Number(word, -farthestPixel, farthestPixel)));
    };
    command.right = pixels(words[2]);
    command.down = pixels(words[3]);
    return command;
}

ControlCommand ReadRecolour(Words words, const char* form) {
    StrokeCommand command = std::get<StrokeCommand>(ReadCount<InkEditKind::Recolour>(words, form));
    command.values = Pairs(words.subspan(1), form);
    return command;
}

ControlCommand ReadFade(Words words, const char* form) {
    FadeCommand command;
    if (words.size() == 1 && words[0] == "false") return command;
    RequirePairs(words, form);
    for (std::size_t i = 0; i < words.size(); i += 2)
        if (words[i] == "after")
            command.after = Number(words[i + 1], 0, 3600);
        else if (words[i] == "over")
            command.over = static_cast<std::int32_t>(Whole(words[i + 1], 1, 10000));
        else
            throw cli::Error("fading has no " + cli::Quoted(words[i]) + cli::NearestHint(words[i], {"after", "over"}));
    if (!command.after) throw cli::Error(std::string("it is written ") + form);
    return command;
}

ControlCommand ReadToggle(Words words, const char* form) {
    if (words.size() == 2) throw cli::Error(std::string("it is written ") + form);
    ToggleCommand command{words[0], std::nullopt};
    if (words.size() == 3) command.between = {words[1], words[2]};
    return command;
}

template <typename Command>
ControlCommand ReadName(Words words, const char*) {
    return Command{words[0]};
}

struct Verb {
    std::string_view name;
    const char* form;
    std::size_t fewest;  // words behind the name
    std::size_t most;
    ControlCommand (*read)(Words words, const char* form);
};
constexpr std::size_t anyNumber = longestControlLine;
constexpr auto verbs = std::to_array<Verb>({
    {"set", "set NAME VALUE ...", 2, anyNumber,
     [](Words words, const char* form) -> ControlCommand { return SetCommand{Pairs(words, form)}; }},
    {"get", "get NAME", 1, 1, ReadName<GetCommand>},
    {"button", "button NAME", 1, 1, ReadName<ButtonCommand>},
    {"press", "press NAME", 1, 1, ReadName<ButtonCommand>},  // what a button box calls it
    {"toggle", "toggle NAME [VALUE VALUE]", 1, 3, ReadToggle},
    {"step", "step NAME [BY]", 1, 2,
     [](Words words, const char*) -> ControlCommand {
         return StepCommand{words[0], words.size() == 1 ? 1 : Number(words[1], -1000, 1000)};
     }},
    {"key", "key CHORD", 1, 1,
     [](Words words, const char*) -> ControlCommand { return KeyCommand{ParseKeyChord(words[0])}; }},
    {"film", "film frame|play|loop|speed|in|out VALUE ...", 2, anyNumber,
     [](Words words, const char* form) -> ControlCommand { return VideoCommand{ReadVideo(words, form)}; }},
    {"play", "play", 0, 0,
     [](Words, const char*) -> ControlCommand {
         VideoCommand command;
         command.change.play = true;
         return command;
     }},
    {"seek", "seek FRAME", 1, 1,
     [](Words words, const char*) -> ControlCommand {
         VideoCommand command;
         videoWords[0].read(words[0], command.change);
         return command;
     }},
    {"speed", "speed TIMES", 1, 1,
     [](Words words, const char*) -> ControlCommand {
         VideoCommand command;
         command.change.speed = Number(words[0], slowestVideo, fastestVideo);
         return command;
     }},
    {"undo", "undo COUNT", 1, 1, ReadCount<InkEditKind::Undo>},
    {"redo", "redo COUNT", 1, 1, ReadCount<InkEditKind::Redo>},
    {"removeStroke", "removeStroke NUMBER", 1, 1, ReadCount<InkEditKind::Remove>},
    {"moveStroke", "moveStroke NUMBER by RIGHT DOWN", 4, 4, ReadMove},
    {"recolourStroke", "recolourStroke NUMBER NAME VALUE ...", 3, anyNumber, ReadRecolour},
    {"fade", "fade after SECONDS [over FIELDS], or fade false", 1, 4, ReadFade},
    {"container", "container NAME", 1, 1, ReadName<ContainerCommand>},
    {"list", "list", 0, 0, [](Words, const char*) -> ControlCommand { return ListCommand{}; }},
});

std::string Joined(Words words) {
    std::string line;
    for (const std::string& word : words) line += (line.empty() ? "" : " ") + word;
    return line;
}

std::string_view FirstWord(std::string_view name) { return name.substr(0, name.find(' ')); }

// Whoever meant one of several words is told those that begin alike.
[[noreturn]] void RefuseUnknown(const std::string& line, const std::string& first) {
    std::vector<std::string> alike;
    for (const std::string_view name : workspaceActionNames)
        if (FirstWord(name) == first) alike.emplace_back(name);
    if (!alike.empty()) throw cli::Error("there is no command " + cli::Quoted(line) + cli::NearestHint(line, alike));
    std::vector<std::string> known(workspaceActionNames.begin(), workspaceActionNames.end());
    for (const Verb& verb : verbs) known.emplace_back(verb.name);
    std::ranges::sort(known);
    known.erase(std::unique(known.begin(), known.end()), known.end());
    throw cli::Error("there is no command " + cli::Quoted(first) + cli::NearestHint(first, known, "list"));
}

}  // namespace

ControlCommand ParseControlCommand(std::string_view line) {
    const std::vector<std::string> words = SplitControlWords(line);
    if (words.empty()) throw cli::Error("the command is empty");
    const std::string joined = Joined(words);
    const auto* action = std::ranges::find(workspaceActionNames, joined);
    if (action != workspaceActionNames.end())
        return static_cast<WorkspaceAction>(action - workspaceActionNames.begin());
    const auto* verb = std::ranges::find(verbs, words[0], &Verb::name);
    if (verb == verbs.end()) RefuseUnknown(joined, words[0]);
    const std::size_t behind = words.size() - 1;
    try {
        if (behind < verb->fewest || behind > verb->most) throw cli::Error(std::string("it is written ") + verb->form);
        return verb->read(Words(words).subspan(1), verb->form);
    } catch (const cli::Error& error) {
        throw cli::Error(words[0] + ": " + error.what());
    }
}

std::vector<std::string> ControlForms() {
    std::vector<std::string> forms;
    forms.reserve(verbs.size());
    for (const Verb& verb : verbs) forms.emplace_back(verb.form);
    return forms;
}

}  // namespace kel
