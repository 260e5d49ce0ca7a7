#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace chalkpane {

// Every character of a scanner can pass through one of these on its way in.
class CharacterFilter {
public:
    virtual ~CharacterFilter() = default;
    virtual std::uint8_t pass(std::uint8_t character) = 0;
};

// How the names of files are written in the text.
enum class PathFlavour : std::uint32_t {
    Native = 0,
    Classic = 1,  // colons between the parts, a volume's name in front
    Slashes = 2,
};

// Reads the text form of values, from a string or a file: words, numbers, strings and punctuation, with comments from
// "#" to the end of the line.
//
// A read that does not fit answers false and leaves the token for another try; the outputs stay. A character 255 counts
// as the end of the input.
class TextScanner {
public:
    explicit TextScanner(std::string input);
    explicit TextScanner(std::FILE* input);  // not owned
    TextScanner(const TextScanner&) = delete;
    TextScanner& operator=(const TextScanner&) = delete;

    // The words that are keywords, in upper case; 1 is TRUE, 2 is FALSE and 12 is POINT. An empty word is none.
    virtual std::uint8_t keywordCount() const;
    virtual std::string keyword(std::uint8_t index) const;
    virtual ~TextScanner() = default;

    bool readBoolean(bool& out);
    bool readReal(double& out);  // an integer does too
    bool readInteger(std::int32_t& out);
    bool readString(std::string& out);
    bool readFileName(std::string& out);  // converted from the path flavour
    bool expectPunctuation(char character);
    bool expectIdentifier(std::string_view name);  // without regard to case
    bool expectPoint();

    std::int32_t getLineNumber() const { return lineNumber; }
    // True once a token could not be read although the input had not ended; nothing is read after that.
    bool isMalformed() const { return malformed; }
    // True when nothing is left but white space and comments.
    bool isAtEnd() { return !nextToken() && !malformed; }

    void setEscapes(bool honoured) { escapes = honoured; }
    void setPathFlavour(PathFlavour flavour) { pathFlavour = flavour; }
    // Strings are in the system's code page, or the Macintosh's when the path flavour is not native; convert to UTF-8.
    void setConvertText(bool convert) { convertText = convert; }
    // A further character that may open an identifier.
    void setExtraIdentifierStart(char character);
    // Not owned; null for none. Set before the first read; the character already under the cursor passes too.
    void setFilter(CharacterFilter* newFilter);

private:
    enum class TokenKind : std::int32_t { None, Keyword, Identifier, Punctuation, Integer, Real, String };
    static constexpr std::uint8_t endOfInput = 255;

    bool nextToken();
    bool readToken();
    bool readQuoted();
    bool readIdentifier();
    bool readNumber();
    void skipBlanks();
    std::uint8_t fetch();
    void advance() { current = fetch(); }
    bool take(TokenKind kind);
    bool takeKeyword(std::uint8_t index);

    std::FILE* file = nullptr;
    bool fromString;
    std::string text;
    std::size_t position = 0;
    std::uint8_t current = endOfInput;
    bool pending = false;  // a token has been read and not consumed
    bool escapes = true;
    TokenKind tokenKind = TokenKind::None;
    std::uint8_t keywordIndex = 0;
    std::uint8_t punctuation = 0;
    std::int32_t integerValue = 0;
    double realValue = 0.0;
    std::string stringValue;
    std::string identifier;  // in upper case
    std::int32_t lineNumber = 1;
    PathFlavour pathFlavour = PathFlavour::Native;
    bool convertText = false;
    bool extraIdentifierStart = false;
    std::uint8_t extraIdentifierChar = 0;
    CharacterFilter* filter = nullptr;
    bool malformed = false;
};

// The native form of a file's name in another flavour. The drive of an absolute name is taken to be C.
std::string nativePath(std::string_view path, PathFlavour flavour);

}  // namespace chalkpane
