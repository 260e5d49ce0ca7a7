#include "cli/hex_colour.h"

#include <charconv>
#include <system_error>

namespace cli {

std::optional<HexColour> ParseHexColour(std::string_view text) {
    if ((text.size() != 7 && text.size() != 9) || text[0] != '#') return std::nullopt;
    HexColour colour{{0, 0, 0, 255}, text.size() == 9};
    for (std::size_t i = 1; i < text.size(); i += 2) {
        const char* const digits = text.data() + i;
        const auto [end, failure] = std::from_chars(digits, digits + 2, colour.rgba[i / 2], 16);
        if (failure != std::errc() || end != digits + 2) return std::nullopt;
    }
    return colour;
}

}  // namespace cli
