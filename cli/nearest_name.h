#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cli {

// The end of a message about a name that does not exist: `; did you mean "Arrow"?` where one of `names` is close (upper
// and lower case count as equal), otherwise `; there is only ...` or `; there are ...` with all of them or, where these
// are too many for a line, `; the nearest are ...` with three. Empty when there are no names.
//
//   lister  the command that lists all names, told with the nearest three; may be empty
[[nodiscard]] std::string NearestHint(std::string_view name, const std::vector<std::string>& names,
                                      std::string_view lister = {});

// How many letters to insert, drop or replace to make one of the other, without regard to case.
[[nodiscard]] std::size_t EditDistance(std::string_view left, std::string_view right);

// Equal without regard to case.
[[nodiscard]] bool SameName(std::string_view left, std::string_view right);

// `name` between double quotes, cut to a length that fits a message.
[[nodiscard]] std::string Quoted(std::string_view name);

}  // namespace cli
