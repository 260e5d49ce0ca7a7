#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "chalkpane/parameters/data_set.h"
#include "chalkpane/parameters/parameter_list.h"
#include "chalkpane/parameters/parameter_value.h"

namespace chalkpane::app {

// The words of an enumeration parameter in the order of their numbers; none: it is given by its number alone.
using Choices = std::function<std::vector<std::string>(const ParameterDef&)>;

// What a listing says of one parameter.
struct ParameterDescription {
    const ParameterDef* definition;
    std::string label;    // "Opacity"
    std::string key;      // the long name: "Brush Opacity"
    std::string type;     // "number", "integer", "color", "choice" and so on
    std::string minimum;  // as text; empty without a range
    std::string maximum;
    std::string defaultText;           // as `SetText` takes it
    std::vector<std::string> choices;  // the words of an enumeration
};

// The parameters of one class as texts: finds them by name, sets their values from text and tells values as text.
//
// A parameter goes by its label or its key, without regard to case; where a label of one is the key of another, the
// label counts. What a class declares without a value (the begin and the end of a group) is not there.
//
// By type, the text of a value is
//     integer, number   "30", "0.25"; within the declared range, or the default where that lies outside
//     boolean           true, yes, on, 1, false, no, off, 0
//     choice            a word without regard to case, or its number from 0
//     color             "#rrggbb" or "red,green,blue" of 0 .. 16383
//     position, pair    "0.5,12"; the range holds for both
//     rectangle         "x0,y0,x1,y1", whole numbers
//     graph             "0,0;0.3,0.6;1,1", see ParseGraph; color spline: "0 #000000;1 #ffffff"
//     file, string, ... the text as it stands
// Fonts have no text. `TextOf` gives a text that `SetText` reads back exactly. An animated value takes a text as a key
// at its clock's frame.
//
// All throw cli::Error, one line that begins with `where` and the parameter's label, names what was wrong, and the
// nearest name or the range. A value that could not be set stays as it was.
class ParameterTexts {
public:
    // where: what has the parameters, as messages call it: "Median", "stroke.json: /brush"
    // list: not owned; outlives this, as lists of classes do
    ParameterTexts(std::string where, const ParameterList& list, Choices choices = {});

    [[nodiscard]] const ParameterDef& Find(std::string_view name) const;
    [[nodiscard]] std::vector<ParameterDescription> Describe() const;
    [[nodiscard]] ParameterDescription Describe(const ParameterDef& definition) const;

    // `value` belongs to a parameter of the list.
    void SetText(ParameterValue& value, std::string_view text) const;
    [[nodiscard]] std::string TextOf(const ParameterValue& value) const;

    // Sets the value in a set of the class's values, which gets it where it has none yet, and answers it, for the
    // object's `setParameter`. The set keeps it.
    ParameterValue& Set(DataSet& values, std::string_view name, std::string_view text) const;

private:
    [[nodiscard]] std::vector<std::string> ChoicesOf(const ParameterDef& definition) const;

    std::string m_where;
    const ParameterList* m_list;
    Choices m_choices;
};

}  // namespace chalkpane::app
