#include "apps/chalkpane/values/value_parsing.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>

#include "chalkpane/image/pixel_format.h"
#include "cli/error.h"
#include "cli/hex_colour.h"
#include "cli/nearest_name.h"

namespace chalkpane::app {
namespace {

using cli::Error;
using cli::Quoted;

// The number that the whole text is, if it is one.
template <typename Number>
std::optional<Number> WholeNumber(std::string_view text) {
    text = Trimmed(text);
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    Number number{};
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failure != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

template <typename Number>
std::vector<Number> ParseList(std::string_view text, std::size_t count, Number (*parse)(std::string_view)) {
    const auto pieces = SplitAt(text, ',');
    if (pieces.size() != count)
        throw Error(Quoted(text) + " is not " + std::to_string(count) + " numbers with commas between them");
    std::vector<Number> numbers;
    std::ranges::transform(pieces, std::back_inserter(numbers), parse);
    return numbers;
}

template <typename Number>
std::string ShortestText(Number number) {
    std::array<char, 64> text{};
    const auto [end, failure] = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), end};
}

struct NamedColour {
    std::string_view name;
    std::uint32_t rgb;
};
constexpr std::array namedColours{
    NamedColour{"black", 0x000000},   NamedColour{"silver", 0xC0C0C0}, NamedColour{"gray", 0x808080},
    NamedColour{"grey", 0x808080},    NamedColour{"white", 0xFFFFFF},  NamedColour{"maroon", 0x800000},
    NamedColour{"red", 0xFF0000},     NamedColour{"purple", 0x800080}, NamedColour{"magenta", 0xFF00FF},
    NamedColour{"fuchsia", 0xFF00FF}, NamedColour{"green", 0x008000},  NamedColour{"lime", 0x00FF00},
    NamedColour{"olive", 0x808000},   NamedColour{"yellow", 0xFFFF00}, NamedColour{"navy", 0x000080},
    NamedColour{"blue", 0x0000FF},    NamedColour{"teal", 0x008080},   NamedColour{"cyan", 0x00FFFF},
    NamedColour{"aqua", 0x00FFFF},    NamedColour{"orange", 0xFFA500}, NamedColour{"pink", 0xFFC0CB},
    NamedColour{"brown", 0xA52A2A},
};

ColourText ParseColourName(std::string_view text) {
    const auto* const named = std::ranges::find(namedColours, text, &NamedColour::name);
    if (named == namedColours.end()) {
        std::vector<std::string> names;
        names.reserve(namedColours.size());
        for (const NamedColour& colour : namedColours) names.emplace_back(colour.name);
        throw Error(Quoted(text) + " is not a color such as #ff8000" + cli::NearestHint(text, names));
    }
    const auto byte = [named](unsigned shift) { return Widen(static_cast<std::uint8_t>(named->rgb >> shift)); };
    return {{byte(16), byte(8), byte(0)}, {}};
}

// Three or four digits stand for six or eight, each twice.
ColourText ParseHexColour(std::string_view text) {
    std::string digits(text.substr(1));
    if (digits.size() == 3 || digits.size() == 4)
        for (std::size_t i = digits.size(); i-- > 0;) digits.insert(i, 1, digits[i]);
    const auto colour = cli::ParseHexColour('#' + digits);
    if (!colour) throw Error(Quoted(text) + " is not a color such as #ff8000");
    ColourText result{{Widen(colour->rgba[0]), Widen(colour->rgba[1]), Widen(colour->rgba[2])}, {}};
    if (colour->hasAlpha) result.alpha = colour->rgba[3] / 255.0;
    return result;
}

constexpr const char* graphForm = " is not a graph such as 0,0;0.3,0.6;1,1";

void ReadPoint(std::string_view text, std::string_view whole, ShapePointList& graph) {
    const std::size_t count = SplitAt(text, ',').size();
    if (count != 2 && count != 6) throw Error(Quoted(whole) + graphForm + ": " + Quoted(text));
    const auto numbers = ParseNumbers(text, count);
    for (const std::size_t i : {std::size_t{0}, std::size_t{1}})
        if (numbers[i] < 0.0 || numbers[i] > 1.0)
            throw Error("the point " + Quoted(text) + " of a graph lies outside 0 .. 1");
    if (graph.size() > 0 && graph[graph.size() - 1].getPoint().x > numbers[0])
        throw Error("the point " + Quoted(text) + " of a graph lies left of the one before it");
    ShapePoint& point = graph.append();
    point.setPoint(numbers[0], numbers[1]);
    if (count == 2) return;
    point.setInHandle(numbers[2], numbers[3]);
    point.setOutHandle(numbers[4], numbers[5]);
}

std::string TextOfPair(const DoublePair& pair) { return TextOfNumber(pair.x) + ',' + TextOfNumber(pair.y); }

}  // namespace

std::string_view Trimmed(std::string_view text) {
    const auto isBlank = [](char letter) { return std::isspace(static_cast<unsigned char>(letter)) != 0; };
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::vector<std::string_view> SplitAt(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    for (;;) {
        const std::size_t end = text.find(separator);
        pieces.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return pieces;
        text.remove_prefix(end + 1);
    }
}

std::int32_t ParseInteger(std::string_view text) {
    const auto number = WholeNumber<std::int32_t>(text);
    if (!number) throw Error(Quoted(text) + " is not a whole number");
    return *number;
}

double ParseNumber(std::string_view text) {
    const auto number = WholeNumber<double>(text);
    if (!number || !std::isfinite(*number)) throw Error(Quoted(text) + " is not a number");
    return *number;
}

bool ParseBoolean(std::string_view text) {
    const auto among = [word = Trimmed(text)](std::initializer_list<std::string_view> words) {
        return std::ranges::any_of(words, [word](std::string_view other) { return SameName(word, other); });
    };
    if (among({"true", "yes", "on", "1"})) return true;
    if (among({"false", "no", "off", "0"})) return false;
    throw Error(Quoted(text) + " is neither true nor false");
}

std::vector<double> ParseNumbers(std::string_view text, std::size_t count) {
    return ParseList<double>(text, count, ParseNumber);
}

std::vector<std::int32_t> ParseIntegers(std::string_view text, std::size_t count) {
    return ParseList<std::int32_t>(text, count, ParseInteger);
}

ColourText ParseColour(std::string_view text) {
    const std::string_view word = Trimmed(text);
    if (word.starts_with('#')) return ParseHexColour(word);
    if (word.find(',') == std::string_view::npos) return ParseColourName(word);
    const auto words = ParseIntegers(word, 3);
    if (std::ranges::any_of(words, [](std::int32_t number) { return number < 0 || number > Colour::full; }))
        throw Error("the color " + Quoted(text) + " lies outside 0 .. 16383");
    return {{static_cast<std::uint16_t>(words[0]), static_cast<std::uint16_t>(words[1]),
             static_cast<std::uint16_t>(words[2])},
            {}};
}

std::string TextOfColour(const Colour& colour) {
    static constexpr std::string_view digits = "0123456789abcdef";
    std::string hex = "#";
    std::string words;
    bool isExact = true;
    for (const std::uint16_t word : {colour.red, colour.green, colour.blue}) {
        const std::uint8_t byte = Narrow(word);
        isExact = isExact && Widen(byte) == word;
        hex += digits[byte >> 4];
        hex += digits[byte & 15];
        words += (words.empty() ? "" : ",") + std::to_string(word);
    }
    return isExact ? hex : words;
}

ShapePointList ParseGraph(std::string_view text) {
    ShapePointList graph;
    graph.clear();
    for (const std::string_view point : SplitAt(text, ';')) ReadPoint(Trimmed(point), text, graph);
    return graph;
}

std::string TextOfGraph(const ShapePointList& graph) {
    std::string text;
    for (std::size_t i = 0; i < graph.size(); ++i) {
        const DoublePair place = graph[i].getPoint();
        const DoublePair in = graph[i].getInHandle();
        const DoublePair out = graph[i].getOutHandle();
        text += (i == 0 ? "" : ";") + TextOfPair(place);
        if (in != place || out != place) text += ',' + TextOfPair(in) + ',' + TextOfPair(out);
    }
    return text;
}

ColourSpline ParseColourSpline(std::string_view text) {
    ColourSpline spline;
    for (const std::string_view knot : SplitAt(text, ';')) {
        std::vector<std::string_view> words = SplitAt(Trimmed(knot), ' ');
        std::erase(words, std::string_view());
        if (words.size() != 2 && words.size() != 3)
            throw Error(Quoted(text) + " is not a color spline such as 0 #000000;1 #ffffff");
        const auto position = static_cast<float>(ParseNumber(words[0]));
        const ColourText colour = ParseColour(words[1]);
        if (colour.alpha) throw Error(Quoted(words[1]) + " has an alpha, which a color spline does not");
        if (words.size() == 2)
            spline.addKnot(colour.colour, position);
        else
            spline.addKnot(colour.colour, position, static_cast<float>(ParseNumber(words[2])));
    }
    return spline;
}

std::string TextOfColourSpline(const ColourSpline& spline) {
    std::string text;
    for (std::size_t i = 0; i < spline.knotCount(); ++i) {
        text += (i == 0 ? "" : ";") + TextOfNumber(spline.knotPosition(i)) + ' ' + TextOfColour(spline.knotColour(i));
        if (spline.midpointsGiven()) text += ' ' + TextOfNumber(spline.knotMidpoint(i));
    }
    return text;
}

std::string TextOfNumber(double number) { return ShortestText(number); }
std::string TextOfNumber(float number) { return ShortestText(number); }

}  // namespace chalkpane::app
