#include "chalkpane/parameters/text/text_scanner.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string_view>

#include "chalkpane/parameters/text/code_pages.h"
#include "chalkpane/parameters/text/text_sink.h"

namespace {

using namespace chalkpane;

// The one real, integer or string at the start of a text; empty when it does not fit.
std::string Real(const char* text) {
    TextScanner scanner(text);
    double out = 0.0;
    return scanner.readReal(out) ? std::to_string(out) : "";
}
std::string Integer(const char* text) {
    TextScanner scanner(text);
    std::int32_t out = 0;
    return scanner.readInteger(out) ? std::to_string(out) : "";
}
std::string Quoted(const std::string& text) {
    TextScanner scanner(text);
    std::string out;
    return scanner.readString(out) ? "=" + out : "";
}
std::string Path(const char* text, PathFlavour flavour) { return nativePath(text, flavour); }

TEST_CASE("TRUE reads in any mix of upper and lower case") {
    for (const char* word : {"true", "TRUE", "tRuE"}) {
        TextScanner scanner(word);
        bool out = false;
        CHECK(scanner.readBoolean(out));
        CHECK(out);
    }
    TextScanner scanner("fAlse");
    bool out = true;
    CHECK(scanner.readBoolean(out));
    CHECK_FALSE(out);
}

TEST_CASE("A token that does not fit stays for another try, and the output stays too") {
    TextScanner scanner("7 word");
    bool flag = true;
    std::string text = "kept";
    CHECK_FALSE(scanner.readBoolean(flag));
    CHECK_FALSE(scanner.readString(text));
    CHECK_FALSE(scanner.expectPunctuation(';'));
    CHECK_FALSE(scanner.expectPoint());
    CHECK(flag);
    CHECK_EQ(text, "kept");
    std::int32_t number = 0;
    CHECK(scanner.readInteger(number));
    CHECK_EQ(number, 7);
    CHECK_FALSE(scanner.expectIdentifier("wor"));
    CHECK(scanner.expectIdentifier("WorD"));
    CHECK_FALSE(scanner.isMalformed());
}

TEST_CASE("Integers are gathered with their minus signs, wherever these stand") {
    CHECK_EQ(Integer("42"), "42");
    CHECK_EQ(Integer("-42"), "-42");
    CHECK_EQ(Integer("--42"), "42");
    CHECK_EQ(Integer("4-2"), "-42");
    CHECK_EQ(Integer("-"), "0");
    CHECK_EQ(Integer("2147483648"), std::to_string(INT_MIN));  // wraps
    CHECK_EQ(Integer("1.5"), "");
    CHECK_EQ(Integer("word"), "");
}

TEST_CASE("Reals need a stop or an exponent; readReal takes integers as well") {
    CHECK_EQ(Real("7"), "7.000000");
    CHECK_EQ(Real("7."), "7.000000");
    CHECK_EQ(Real(".5"), "0.500000");
    CHECK_EQ(Real("-1.25"), "-1.250000");
    CHECK_EQ(Real("1e2"), "100.000000");
    CHECK_EQ(Real("1E+2"), "100.000000");
    CHECK_EQ(Real("125e-2"), "1.250000");
    CHECK_EQ(Real("1e"), "1.000000");
    CHECK_EQ(Real("-."), "0.000000");
    CHECK_EQ(Real("nan"), "");
}

TEST_CASE("A second full stop fails the number, a second exponent ends it") {
    TextScanner stops("1.2.3");
    double out = 0.0;
    CHECK_FALSE(stops.readReal(out));
    CHECK(stops.isMalformed());
    TextScanner exponents("1e2e3");
    CHECK(exponents.readReal(out));
    CHECK_EQ(out, 100.0);
    CHECK(exponents.expectIdentifier("E3"));
}

TEST_CASE("A lone full stop is punctuation") {
    TextScanner scanner(" . ");
    CHECK(scanner.expectPunctuation('.'));
    CHECK(scanner.isAtEnd());
}

TEST_CASE("Every mark of punctuation is a token of its own") {
    const std::string marks = "{};:(),[]/=";
    TextScanner scanner(marks);
    for (const char mark : marks) CHECK(scanner.expectPunctuation(mark));
    CHECK(scanner.isAtEnd());
}

TEST_CASE("Strings close with the quote that opened them") {
    CHECK_EQ(Quoted("\"it's\""), "=it's");
    CHECK_EQ(Quoted("'say \"hi\"'"), "=say \"hi\"");
    CHECK_EQ(Quoted("\"\""), "=");
    CHECK_EQ(Quoted("\"open"), "");
    CHECK_EQ(Quoted("\"two\nlines\""), "");
}

TEST_CASE("Escapes: n is a line feed, anything else is itself, a line's end fails") {
    CHECK_EQ(Quoted(R"("a\nb")"), "=a\nb");
    CHECK_EQ(Quoted(R"("\"\\\'\q")"), "=\"\\'q");
    CHECK_EQ(Quoted("\"a\\\nb\""), "");
    CHECK_EQ(Quoted("\"a\\"), "");
    TextScanner scanner(R"("C:\new\")");
    scanner.setEscapes(false);
    std::string out;
    CHECK(scanner.readString(out));
    CHECK_EQ(out, R"(C:\new\)");
}

TEST_CASE("Escaped text reads back whatever it holds") {
    const std::string odd = "a\nb\"c\\d'e\\n\t#";
    CHECK_EQ(escapeText("a\n\"\\"), "a\\n\\\"\\\\");
    CHECK_EQ(Quoted("\"" + escapeText(odd) + "\""), "=" + odd);
}

TEST_CASE("White space and comments are passed over and lines are counted from 1") {
    TextScanner scanner("  # one\n\t7 # two\r\n#three\n 8#");
    std::int32_t number = 0;
    CHECK_EQ(scanner.getLineNumber(), 1);
    CHECK(scanner.readInteger(number));
    CHECK_EQ(scanner.getLineNumber(), 2);
    CHECK(scanner.readInteger(number));
    CHECK_EQ(number, 8);
    CHECK_EQ(scanner.getLineNumber(), 4);
    CHECK(scanner.isAtEnd());
    CHECK_FALSE(scanner.readInteger(number));
    CHECK_FALSE(scanner.isMalformed());
}

TEST_CASE("A comment at the end of the input ends the token stream") {
    TextScanner scanner("# nothing else");
    CHECK(scanner.isAtEnd());
}

TEST_CASE("A character that opens no token fails and stays") {
    TextScanner scanner(" @ 7");
    std::int32_t number = 0;
    for (int i = 0; i < 3; ++i) {
        CHECK_FALSE(scanner.readInteger(number));
        CHECK(scanner.isMalformed());
    }
    CHECK_FALSE(scanner.isAtEnd());
}

TEST_CASE("The byte 255 is the end of the input") {
    TextScanner scanner("7 \xff 8");
    std::int32_t number = 0;
    CHECK(scanner.readInteger(number));
    CHECK_FALSE(scanner.readInteger(number));
    CHECK(scanner.isAtEnd());
}

TEST_CASE("A further character may open an identifier but not go on in one") {
    TextScanner plain("$a");
    CHECK_FALSE(plain.expectIdentifier("$a"));
    TextScanner scanner("$a$b _c");
    scanner.setExtraIdentifierStart('$');
    CHECK(scanner.expectIdentifier("$A"));
    CHECK(scanner.expectIdentifier("$b"));
    CHECK_FALSE(scanner.expectIdentifier("_c"));  // an underscore opens none
}

TEST_CASE("Identifiers go on with letters, digits and underscores") {
    TextScanner scanner("a_1b-2");
    CHECK(scanner.expectIdentifier("A_1B"));
    std::int32_t number = 0;
    CHECK(scanner.readInteger(number));
    CHECK_EQ(number, -2);
}

TEST_CASE("A subclass gives keywords; the base knows TRUE, FALSE and POINT") {
    class Two final : public TextScanner {
    public:
        using TextScanner::TextScanner;
        std::uint8_t keywordCount() const override { return 255; }
        std::string keyword(std::uint8_t index) const override { return index == 12 ? "DOT" : ""; }
    };
    Two scanner("dot true");
    CHECK(scanner.expectPoint());
    bool out = false;
    CHECK_FALSE(scanner.readBoolean(out));
    TextScanner base("Point");
    CHECK_EQ(base.keywordCount(), 13);
    CHECK_EQ(base.keyword(1), "TRUE");
    CHECK_EQ(base.keyword(2), "FALSE");
    CHECK_EQ(base.keyword(3), "");
    CHECK_FALSE(base.expectIdentifier("point"));  // a keyword is no identifier
    CHECK(base.expectPoint());
}

TEST_CASE("A filter sees every character") {
    class Shift final : public CharacterFilter {
    public:
        std::uint8_t pass(std::uint8_t character) override { return character == 'x' ? '7' : character; }
    };
    Shift shift;
    TextScanner scanner("xx 1x");
    scanner.setFilter(&shift);
    std::int32_t number = 0;
    CHECK(scanner.readInteger(number));
    CHECK_EQ(number, 77);
    CHECK(scanner.readInteger(number));
    CHECK_EQ(number, 17);
}

TEST_CASE("A file reads as a string does") {
    std::FILE* const file = std::tmpfile();
    REQUIRE(file != nullptr);
    std::fputs(" true 3 -4", file);
    std::rewind(file);
    TextScanner scanner(file);
    bool flag = false;
    std::int32_t x = 0;
    std::int32_t y = 0;
    CHECK(scanner.readBoolean(flag));
    CHECK(scanner.readInteger(x));
    CHECK(scanner.readInteger(y));
    CHECK_EQ(y, -4);
    CHECK(scanner.isAtEnd());
    std::fclose(file);
    TextScanner none(static_cast<std::FILE*>(nullptr));
    CHECK(none.isAtEnd());
}

TEST_CASE("Native paths stay") { CHECK_EQ(Path("/a:b\\c", PathFlavour::Native), "/a:b\\c"); }

TEST_CASE("Slash paths get a drive in front of a leading slash") {
    CHECK_EQ(Path("/a/b", PathFlavour::Slashes), "C:\\\\a\\b");
    CHECK_EQ(Path("a/b", PathFlavour::Slashes), "a\\b");
    CHECK_EQ(Path("", PathFlavour::Slashes), "");
}

TEST_CASE("Classic paths: colons, volumes, climbs and addresses") {
    CHECK_EQ(Path("", PathFlavour::Classic), "");
    CHECK_EQ(Path("Disk:art:a.png", PathFlavour::Classic), "C:\\art\\a.png");
    CHECK_EQ(Path("Disk:::a", PathFlavour::Classic), "C:\\a");
    CHECK_EQ(Path(":art:a", PathFlavour::Classic), ".\\art\\a");
    CHECK_EQ(Path("::art:a", PathFlavour::Classic), "..\\art\\a");
    CHECK_EQ(Path(":::a", PathFlavour::Classic), "..\\..\\a");
    CHECK_EQ(Path("$ART:a", PathFlavour::Classic), "$ART:a");
    CHECK_EQ(Path("file:///a/b", PathFlavour::Classic), "C:\\\\a\\b");
    CHECK_EQ(Path("file://a/b", PathFlavour::Classic), "a\\b");
    CHECK_EQ(Path("a", PathFlavour::Classic), "C:\\a");
    CHECK_EQ(Path(":", PathFlavour::Classic), ".\\");
}

TEST_CASE("Strings convert to UTF-8 from the page that the path flavour tells") {
    // 0x8a: S with caron, U+0160, in the one page; a with diaeresis, U+00E4, in the other. 0x80 is the euro, U+20AC.
    CHECK_EQ(utf8From(CodePage::System, "a\x8a\x80"), "a\xc5\xa0\xe2\x82\xac");
    CHECK_EQ(utf8From(CodePage::Macintosh, "\x8a"), "\xc3\xa4");
    std::string out;
    TextScanner native("'\xe4'");
    native.setConvertText(true);
    CHECK(native.readString(out));
    CHECK_EQ(out, "\xc3\xa4");
    TextScanner classic("'Disk:\x8a'");
    classic.setConvertText(true);
    classic.setPathFlavour(PathFlavour::Classic);
    CHECK(classic.readFileName(out));
    CHECK_EQ(out, "C:\\\xc3\xa4");
}

// Each read that can fit takes a token, so that as many rounds as there are bytes reach the end.
TEST_CASE("No bytes crash or hang the scanner") {
    constexpr unsigned seed = 2604;
    CAPTURE(seed);
    std::mt19937_64 random(seed);
    constexpr std::string_view useful = "0123456789.-+eE\"'\\#\n {}=aTRUEnan_";
    std::size_t tokens = 0;
    for (int i = 0; i < 1000000; ++i) {
        std::string text(random() % 24, '\0');
        for (std::size_t at = 0; at < text.size(); at += 8) {
            const std::uint64_t bytes = random();
            std::memcpy(text.data() + at, &bytes, std::min<std::size_t>(8, text.size() - at));
        }
        // Half of them have nothing but the bytes that scanners care for.
        if (i % 2 == 0)
            for (char& c : text) c = useful[static_cast<unsigned char>(c) % useful.size()];
        const std::size_t most = text.size();
        TextScanner scanner(std::move(text));
        scanner.setEscapes(i % 3 != 0);
        scanner.setConvertText(i % 5 == 0);
        std::size_t rounds = 0;
        for (; !scanner.isAtEnd() && !scanner.isMalformed(); ++rounds) {
            bool flag = false;
            double number = 0.0;
            std::string word;
            const bool fits = scanner.readBoolean(flag) || scanner.readReal(number) || scanner.readFileName(word) ||
                              scanner.expectPoint() || scanner.expectPunctuation('=') ||
                              scanner.expectPunctuation('{') || scanner.expectPunctuation('}') ||
                              scanner.expectIdentifier("n");
            if (!fits) break;
            ++tokens;
        }
        REQUIRE_LE(rounds, most);
    }
    CHECK_GT(tokens, 100000);
}

TEST_CASE("Numbers are written in two formats") {
    CHECK_EQ(formatNumber(std::int32_t{-4}), "-4");
    CHECK_EQ(formatNumber(1.5), "  1.500000");
    CHECK_EQ(formatNumber(-123456.1234567), "-123456.123457");
    CHECK_EQ(formatNumber(1e308).size(), 309 + 7);
}

}  // namespace
