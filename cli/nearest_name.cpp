#include "cli/nearest_name.h"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace cli {
namespace {

// Longer names are compared by their beginnings: the work grows with the product of both lengths.
constexpr std::size_t comparedLength = 64;
constexpr std::size_t mostShown = 16;  // names in a message

char Lower(char letter) { return static_cast<char>(std::tolower(static_cast<unsigned char>(letter))); }

}  // namespace

bool SameName(std::string_view left, std::string_view right) {
    return std::ranges::equal(left, right, {}, Lower, Lower);
}

std::size_t EditDistance(std::string_view left, std::string_view right) {
    left = left.substr(0, comparedLength);
    right = right.substr(0, comparedLength);
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char letter : left) {
        std::size_t diagonal = row[0]++;
        for (std::size_t i = 0; i < right.size(); ++i) {
            const std::size_t replaced = diagonal + (Lower(letter) == Lower(right[i]) ? 0 : 1);
            diagonal = row[i + 1];
            row[i + 1] = std::min({replaced, row[i] + 1, row[i + 1] + 1});
        }
    }
    return row.back();
}

std::string NearestHint(std::string_view name, const std::vector<std::string>& names, std::string_view lister) {
    if (names.empty()) return {};
    std::vector<std::string> byDistance = names;
    std::ranges::stable_sort(byDistance, {}, [&](const std::string& other) { return EditDistance(name, other); });
    const std::string& nearest = byDistance.front();
    if (EditDistance(name, nearest) * 2 <= std::max(name.size(), nearest.size()))
        return "; did you mean " + Quoted(nearest) + "?";
    if (names.size() > mostShown) {
        std::string hint = "; the nearest are " + Quoted(byDistance[0]) + ", " + Quoted(byDistance[1]) + " and " +
                           Quoted(byDistance[2]);
        return lister.empty() ? hint : hint + "; `" + std::string(lister) + "` lists all";
    }
    std::string hint = names.size() == 1 ? "; there is only " : "; there are ";
    for (const std::string& each : names) {
        if (&each != &names.front()) hint += ", ";
        hint += Quoted(each);
    }
    return hint;
}

std::string Quoted(std::string_view name) {
    constexpr std::size_t shownLength = 60;
    if (name.size() <= shownLength) return '"' + std::string(name) + '"';
    return '"' + std::string(name.substr(0, shownLength)) + "...\"";
}

}  // namespace cli
