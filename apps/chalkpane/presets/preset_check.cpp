#include "apps/chalkpane/presets/preset_check.h"

#include <limits>

namespace chalkpane::app {
namespace {

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsText(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 0x20 && byte != 0x7F && byte != 0xFF) || c == '\n' || c == '\r' || c == '\t';
}

// How long the piece of text at the front is: a comment, a string, a word, a number or a single character.
std::size_t PieceLength(std::string_view text) {
    const auto upTo = [text](auto&& ends) {
        std::size_t length = 1;
        while (length < text.size() && !ends(text[length])) ++length;
        return length;
    };
    const char first = text.front();
    if (first == '#') return upTo([](char c) { return c == '\n'; });
    if (first == '"' || first == '\'') {
        std::size_t length = 1;
        for (; length < text.size() && text[length] != first && text[length] != '\n'; ++length)
            if (text[length] == '\\' && length + 1 < text.size() && text[length + 1] != '\n') ++length;
        return length < text.size() && text[length] == first ? length + 1 : length;
    }
    if (IsLetter(first)) return upTo([](char c) { return !IsLetter(c) && !IsDigit(c) && c != '_'; });
    if (IsDigit(first) || first == '-' || first == '.')
        return upTo([](char c) { return !IsDigit(c) && c != '-' && c != '+' && c != '.' && c != 'e' && c != 'E'; });
    return 1;
}

// Of whole numbers alone; a minus sign may stand anywhere in a number and turns it round.
bool IsTooLarge(std::string_view piece) {
    if (!IsDigit(piece.front()) && piece.front() != '-') return false;
    std::int64_t magnitude = 0;
    bool isNegative = false;
    for (const char c : piece) {
        if (c == '-') {
            isNegative = !isNegative;
        } else if (!IsDigit(c)) {
            return false;
        } else if (magnitude < std::int64_t{1} << 32) {
            magnitude = magnitude * 10 + (c - '0');
        }
    }
    return magnitude > std::numeric_limits<std::int32_t>::max() + std::int64_t{isNegative};
}

}  // namespace

std::optional<Flaw> FindFlaw(std::string_view text) {
    std::int32_t line = 1;
    while (!text.empty()) {
        const std::string_view piece = text.substr(0, PieceLength(text));
        for (const char c : piece)
            if (!IsText(c))
                return Flaw{line,
                            "this is no text: it holds the byte " + std::to_string(static_cast<unsigned char>(c))};
        if (IsTooLarge(piece))
            return Flaw{line, "the whole number " + std::string(piece.substr(0, 40)) + " is too large"};
        if (piece == "\n") ++line;
        text.remove_prefix(piece.size());
    }
    return std::nullopt;
}

}  // namespace chalkpane::app
