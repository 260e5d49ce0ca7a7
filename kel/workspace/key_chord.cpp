#include "kel/workspace/key_chord.h"

#include <algorithm>
#include <array>

#include "cli/error.h"
#include "cli/nearest_name.h"

namespace kel {
namespace {

constexpr std::string_view signs = "!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~";
constexpr std::array namedKeys{"Space", "Return", "Escape",   "Backspace", "Tab",   "Insert", "Delete", "Home",
                               "End",   "PageUp", "PageDown", "Left",      "Right", "Up",     "Down"};
constexpr int functionKeys = 12;

struct Modifier {
    std::string_view name;
    bool KeyChord::*held;
};
constexpr std::array modifiers{Modifier{"Ctrl", &KeyChord::control}, Modifier{"Shift", &KeyChord::shift},
                               Modifier{"Alt", &KeyChord::alt}};

std::vector<std::string> MakeKeyNames() {
    std::vector<std::string> names(namedKeys.begin(), namedKeys.end());
    for (int number = 1; number <= functionKeys; ++number) names.push_back("F" + std::to_string(number));
    for (char letter = 'A'; letter <= 'Z'; ++letter) names.emplace_back(1, letter);
    for (char digit = '0'; digit <= '9'; ++digit) names.emplace_back(1, digit);
    for (const char sign : signs) names.emplace_back(1, sign);
    return names;
}

// The longer names, for a message: nobody needs to be told that there is an A.
std::vector<std::string> NamedKeys() {
    auto names = KeyNames();
    std::erase_if(names, [](const std::string& name) { return name.size() == 1; });
    return names;
}

// Takes "Ctrl+" and the like off the front.
bool TakeModifier(std::string_view& text, KeyChord& chord) {
    const std::size_t plus = text.find('+');
    if (plus == std::string_view::npos || plus == 0 || plus + 1 == text.size()) return false;
    const std::string_view name = text.substr(0, plus);
    const auto* modifier =
        std::ranges::find_if(modifiers, [&](const Modifier& each) { return cli::SameName(each.name, name); });
    if (modifier == modifiers.end())
        throw cli::Error("there is no modifier " + cli::Quoted(name) +
                         cli::NearestHint(name, {"Ctrl", "Shift", "Alt"}));
    chord.*(modifier->held) = true;
    text.remove_prefix(plus + 1);
    return true;
}

}  // namespace

const std::vector<std::string>& KeyNames() {
    static const std::vector<std::string> names = MakeKeyNames();
    return names;
}

KeyChord ParseKeyChord(std::string_view text) {
    KeyChord chord;
    while (TakeModifier(text, chord)) continue;
    const auto& names = KeyNames();
    const auto found = std::ranges::find_if(names, [&](const std::string& name) { return cli::SameName(name, text); });
    if (found == names.end())
        throw cli::Error("there is no key " + cli::Quoted(text) + cli::NearestHint(text, NamedKeys()));
    chord.key = *found;
    if (IsSign(chord) && (chord.control || chord.shift || chord.alt))
        throw cli::Error("the sign " + cli::Quoted(chord.key) + " takes no modifier");
    return chord;
}

std::string ChordText(const KeyChord& chord) {
    std::string text;
    for (const Modifier& modifier : modifiers)
        if (chord.*(modifier.held)) text.append(modifier.name).append("+");
    return text + chord.key;
}

bool IsSign(const KeyChord& chord) { return chord.key.size() == 1 && signs.find(chord.key[0]) != std::string::npos; }

}  // namespace kel
