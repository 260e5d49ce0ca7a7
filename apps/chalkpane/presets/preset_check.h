#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace chalkpane::app {

struct Flaw {
    std::int32_t line;  // from 1
    std::string reason;
};

// What the scanner of values lets pass and a file must not have: bytes that are no text, and whole numbers beyond 32
// bits, which would come out as others. The first of them.
[[nodiscard]] std::optional<Flaw> FindFlaw(std::string_view text);

}  // namespace chalkpane::app
