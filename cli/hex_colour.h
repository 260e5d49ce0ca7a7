#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace cli {

struct HexColour {
    std::array<std::uint8_t, 4> rgba{};  // opaque where the text tells no alpha
    bool hasAlpha = false;
};

// "#rrggbb" or "#rrggbbaa", in either case of letters; nothing for any other text.
[[nodiscard]] std::optional<HexColour> ParseHexColour(std::string_view text);

}  // namespace cli
