#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cli {

// "a, b or c", or with another word before the last one; an empty word makes "a, b, c".
[[nodiscard]] inline std::string WordList(const std::vector<std::string>& words, std::string_view beforeLast) {
    std::string list;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const bool isLast = i + 1 == words.size() && i > 0 && !beforeLast.empty();
        if (isLast)
            list.append(" ").append(beforeLast).append(" ");
        else if (i > 0)
            list += ", ";
        list += words[i];
    }
    return list;
}

}  // namespace cli
