#pragma once

#include <memory>
#include <string_view>

#include "apps/chalkpane/values/parameter_text.h"
#include "chalkpane/filters/filter.h"

namespace chalkpane::app {

// The filters as texts. All throw cli::Error with one line.

// The registry's prototype by its label or its name, without regard to case; where a label of one is the name of
// another, the label counts.
[[nodiscard]] const Filter& FindFilter(std::string_view name);

// The words of the enumerations of a filter's class.
[[nodiscard]] Choices FilterChoices(const Filter& filter);

// The parameters of a filter's class; messages begin with its label.
[[nodiscard]] ParameterTexts TextsOf(const Filter& filter);

// A fresh filter with a set of its values (plain, not animated), all at their declared defaults.
[[nodiscard]] std::unique_ptr<Filter> MakeFilter(const Filter& prototype);

// A fresh filter from
//     FILTER[:PARAMETER=VALUE]...
// such as "Median", "Median:Radius=3", "Brightness/Contrast:Brightness=0.2:Contrast=0.1" and
// "Luma Graph:LUT Graph=0,0;0.3,0.6;1,1". Blanks around a name or a value do not count. In the name of a parameter a
// colon stands for a blank, so "Luma Graph:LUT:Graph=0,0;1,1" says the same. In a value a backslash before a colon or a
// backslash makes it part of the value.
[[nodiscard]] std::unique_ptr<Filter> FilterFromText(std::string_view text);

// Gives every setting of the filter what its values hold; filters read their settings, not their values.
void TakeValues(Filter& filter);

}  // namespace chalkpane::app
