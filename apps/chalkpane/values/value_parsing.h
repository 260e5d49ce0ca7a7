#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "chalkpane/parameters/animation/colour_spline.h"
#include "chalkpane/parameters/colour.h"
#include "chalkpane/parameters/shape_point_list.h"
#include "cli/nearest_name.h"

namespace chalkpane::app {

// The texts by which command lines and files give values, read whole: blanks around a text or a number do not count,
// anything else that is left over does. All throw cli::Error with the reason alone, quoting the text. Numbers have a
// full stop, whatever the machine's language, and are finite.

[[nodiscard]] std::int32_t ParseInteger(std::string_view text);
[[nodiscard]] double ParseNumber(std::string_view text);
// true, yes, on, 1; false, no, off, 0; without regard to case.
[[nodiscard]] bool ParseBoolean(std::string_view text);
// Exactly `count` numbers with commas between them.
[[nodiscard]] std::vector<double> ParseNumbers(std::string_view text, std::size_t count);
[[nodiscard]] std::vector<std::int32_t> ParseIntegers(std::string_view text, std::size_t count);

struct ColourText {
    Colour colour;
    std::optional<double> alpha;  // 0 .. 1, where the text has one
};
// "#rrggbb" or "#rrggbbaa" in hexadecimal digits, 8 bits widened to 14, in short "#rgb" or "#rgba"; a name such as
// "red"; or three words of 0 .. 16383, "16383,8192,0".
[[nodiscard]] ColourText ParseColour(std::string_view text);
// The shorter of both forms that says the colour exactly.
[[nodiscard]] std::string TextOfColour(const Colour& colour);

// Points "x,y" with semicolons between them, x and y from 0 to 1, x ascending: "0,0;0.3,0.6;1,1". A point with handles
// has six numbers: its place, its in handle's and its out handle's.
[[nodiscard]] ShapePointList ParseGraph(std::string_view text);
[[nodiscard]] std::string TextOfGraph(const ShapePointList& graph);

// Knots "position colour" or "position colour midpoint" with semicolons between them: "0 #000000;1 #ffffff 0.5".
[[nodiscard]] ColourSpline ParseColourSpline(std::string_view text);
[[nodiscard]] std::string TextOfColourSpline(const ColourSpline& spline);

// The shortest text that reads back as this number; a float's own where the number is one.
[[nodiscard]] std::string TextOfNumber(double number);
[[nodiscard]] std::string TextOfNumber(float number);

// True for equal texts, letters without regard to case.
using cli::SameName;
[[nodiscard]] std::string_view Trimmed(std::string_view text);
// At every `separator`; an empty text is one empty piece.
[[nodiscard]] std::vector<std::string_view> SplitAt(std::string_view text, char separator);

}  // namespace chalkpane::app
