#include "chalkpane/parameters/text/text_scanner.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "chalkpane/parameters/text/code_pages.h"

namespace chalkpane {

namespace {

constexpr std::string_view punctuationMarks = "{};:(),[]/=";

bool isDigit(int c) { return c >= '0' && c <= '9'; }
bool isLetter(int c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
char toUpper(int c) { return static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c); }
bool isBlank(int c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }

}  // namespace

TextScanner::TextScanner(std::string input) : fromString(true), text(std::move(input)) { advance(); }

TextScanner::TextScanner(std::FILE* input) : file(input), fromString(false) { advance(); }

std::uint8_t TextScanner::keywordCount() const { return 13; }

std::string TextScanner::keyword(std::uint8_t index) const {
    switch (index) {
        case 1:
            return "TRUE";
        case 2:
            return "FALSE";
        case 12:
            return "POINT";
        default:
            return {};
    }
}

void TextScanner::setExtraIdentifierStart(char character) {
    extraIdentifierStart = true;
    extraIdentifierChar = static_cast<std::uint8_t>(character);
}

void TextScanner::setFilter(CharacterFilter* newFilter) {
    filter = newFilter;
    if (filter != nullptr && current != endOfInput) current = filter->pass(current);
}

std::uint8_t TextScanner::fetch() {
    std::uint8_t character = endOfInput;
    if (fromString) {
        if (position < text.size()) character = static_cast<std::uint8_t>(text[position++]);
    } else if (file != nullptr) {
        const int read = std::fgetc(file);
        if (read != EOF) character = static_cast<std::uint8_t>(read);
    }
    return filter != nullptr && character != endOfInput ? filter->pass(character) : character;
}

void TextScanner::skipBlanks() {
    while (isBlank(current) || current == '#') {
        if (current == '#')
            while (current != '\n' && current != endOfInput) advance();
        if (current == '\n') ++lineNumber;
        if (current != endOfInput) advance();
    }
}

bool TextScanner::nextToken() {
    if (pending || malformed) return pending;  // KEEP: behind a malformed token nothing is read
    skipBlanks();
    if (current == endOfInput) return false;
    pending = readToken();
    malformed = !pending;
    return pending;
}

bool TextScanner::readToken() {
    if (punctuationMarks.find(static_cast<char>(current)) != std::string_view::npos) {
        tokenKind = TokenKind::Punctuation;
        punctuation = current;
        advance();
        return true;
    }
    if (current == '"' || current == '\'') return readQuoted();
    if (isLetter(current) || (extraIdentifierStart && current == extraIdentifierChar)) return readIdentifier();
    if (isDigit(current) || current == '-' || current == '.') return readNumber();
    return false;
}

bool TextScanner::readQuoted() {
    const std::uint8_t quote = current;
    const auto endsLine = [this] { return current == '\n' || current == endOfInput; };
    stringValue.clear();
    for (advance(); current != quote; advance()) {
        if (endsLine()) return false;
        char character = static_cast<char>(current);
        if (escapes && current == '\\') {
            advance();
            if (endsLine()) return false;
            character = current == 'n' ? '\n' : static_cast<char>(current);
        }
        stringValue += character;
    }
    advance();
    tokenKind = TokenKind::String;
    return true;
}

bool TextScanner::readIdentifier() {
    identifier.clear();
    do {
        identifier += toUpper(current);
        advance();
    } while (isLetter(current) || isDigit(current) || current == '_');
    tokenKind = TokenKind::Identifier;
    for (std::uint8_t i = 0; i < keywordCount(); ++i) {
        if (identifier != keyword(i)) continue;
        tokenKind = TokenKind::Keyword;
        keywordIndex = i;
        break;
    }
    return true;
}

bool TextScanner::readNumber() {
    std::string number;
    bool hasStop = false;
    bool hasExponent = false;
    const auto gather = [&] {
        number += static_cast<char>(current);
        advance();
    };
    for (;;) {
        if (isDigit(current) || current == '-') {
            gather();
        } else if (current == '.') {
            if (hasStop) return false;
            hasStop = true;
            gather();
        } else if ((current == 'e' || current == 'E') && !hasExponent) {
            hasExponent = true;
            gather();
            if (current == '+' || current == '-') gather();
        } else {
            break;
        }
    }
    if (!hasStop && !hasExponent) {
        std::uint32_t magnitude = 0;  // wraps
        bool negative = false;
        for (const char c : number) {
            if (c == '-') {
                negative = !negative;
            } else {
                magnitude = magnitude * 10 + static_cast<std::uint32_t>(c - '0');
            }
        }
        integerValue = static_cast<std::int32_t>(negative ? 0u - magnitude : magnitude);
        tokenKind = TokenKind::Integer;
    } else if (number.size() >= 2) {
        realValue = std::atof(number.c_str());
        tokenKind = TokenKind::Real;
    } else {  // a full stop alone
        punctuation = '.';
        tokenKind = TokenKind::Punctuation;
    }
    return true;
}

bool TextScanner::take(TokenKind kind) {
    if (!nextToken() || tokenKind != kind) return false;
    pending = false;
    return true;
}

bool TextScanner::takeKeyword(std::uint8_t index) {
    if (!nextToken() || tokenKind != TokenKind::Keyword || keywordIndex != index) return false;
    pending = false;
    return true;
}

bool TextScanner::readBoolean(bool& out) {
    const bool isTrue = takeKeyword(1);
    if (!isTrue && !takeKeyword(2)) return false;
    out = isTrue;
    return true;
}

bool TextScanner::readReal(double& out) {
    if (take(TokenKind::Integer)) {
        out = integerValue;
        return true;
    }
    if (!take(TokenKind::Real)) return false;
    out = realValue;
    return true;
}

bool TextScanner::readInteger(std::int32_t& out) {
    if (!take(TokenKind::Integer)) return false;
    out = integerValue;
    return true;
}

bool TextScanner::readString(std::string& out) {
    if (!take(TokenKind::String)) return false;
    out = stringValue;
    if (convertText) out = utf8From(pathFlavour == PathFlavour::Native ? CodePage::System : CodePage::Macintosh, out);
    return true;
}

bool TextScanner::readFileName(std::string& out) {
    std::string path;
    if (!readString(path)) return false;
    out = nativePath(path, pathFlavour);
    return true;
}

bool TextScanner::expectPunctuation(char character) {
    return nextToken() && punctuation == static_cast<std::uint8_t>(character) && take(TokenKind::Punctuation);
}

bool TextScanner::expectIdentifier(std::string_view name) {
    if (!nextToken() || tokenKind != TokenKind::Identifier) return false;
    const bool same = std::equal(name.begin(), name.end(), identifier.begin(), identifier.end(),
                                 [](char a, char b) { return toUpper(a) == b; });
    return same && take(TokenKind::Identifier);
}

bool TextScanner::expectPoint() { return takeKeyword(12); }

namespace {

constexpr std::string_view drive = "C:\\";

std::string withBackslashes(std::string_view path, char separator) {
    std::string result(path);
    std::replace(result.begin(), result.end(), separator, '\\');
    return result;
}

std::string fromSlashes(std::string_view path) {
    return std::string(path.starts_with('/') ? drive : "") + withBackslashes(path, '/');
}

std::string fromClassic(std::string_view path) {
    constexpr std::string_view url = "file://";
    if (path.starts_with(url)) return fromSlashes(path.substr(url.size()));
    if (path.empty() || path.starts_with('$')) return std::string(path);
    const bool relative = path.starts_with(':');
    const std::size_t volume = path.find(':');  // behind the volume's name
    if (volume != std::string_view::npos) path.remove_prefix(volume);
    const std::size_t colons = std::min(path.find_first_not_of(':'), path.size());
    std::string prefix(relative ? "" : drive);
    for (std::size_t i = 1; relative && i < colons; ++i) prefix += "..\\";
    if (relative && colons == 1) prefix = ".\\";
    return prefix + withBackslashes(path.substr(colons), ':');
}

}  // namespace

std::string nativePath(std::string_view path, PathFlavour flavour) {
    switch (flavour) {
        case PathFlavour::Classic:
            return fromClassic(path);
        case PathFlavour::Slashes:
            return fromSlashes(path);
        default:
            return std::string(path);
    }
}

}  // namespace chalkpane
