#pragma once

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string>

namespace cli {

// The ending of a file's name with its dot, in lower case: ".png" of "A.PNG". Empty: there is none.
[[nodiscard]] inline std::string EndingOf(const std::filesystem::path& file) {
    std::string ending = file.extension().string();
    std::ranges::transform(ending, ending.begin(),
                           [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return ending;
}

}  // namespace cli
