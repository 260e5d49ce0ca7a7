#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kel {

// A key of the keyboard together with the modifiers that are held.
struct KeyChord {
    std::string key;  // one of KeyNames
    bool control = false;
    bool shift = false;
    bool alt = false;
    friend bool operator==(const KeyChord&, const KeyChord&) = default;
};

// "Z", "Ctrl+Shift+Z", "F11", "?". The key may be written in lower case. Throws Error with the reason and the nearest
// name.
[[nodiscard]] KeyChord ParseKeyChord(std::string_view text);

// As ParseKeyChord takes it.
[[nodiscard]] std::string ChordText(const KeyChord& chord);

// True: the key is a sign such as "?", which lies elsewhere on every keyboard, so it is known by the text it types and
// not by the key. It takes no modifiers.
[[nodiscard]] bool IsSign(const KeyChord& chord);

// Letters, digits, signs, and the keys that have names.
[[nodiscard]] const std::vector<std::string>& KeyNames();

}  // namespace kel
