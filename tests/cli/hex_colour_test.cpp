#include "cli/hex_colour.h"

#include <doctest/doctest.h>

#include <string>

namespace cli {

TEST_CASE("A color of six hexadecimal digits is opaque, one of eight has its alpha") {
    const auto opaque = ParseHexColour("#0a80FF");
    REQUIRE(opaque);
    CHECK_EQ(opaque->rgba, std::array<std::uint8_t, 4>{10, 128, 255, 255});
    CHECK_FALSE(opaque->hasAlpha);
    const auto clear = ParseHexColour("#0a80ff40");
    REQUIRE(clear);
    CHECK_EQ(clear->rgba, std::array<std::uint8_t, 4>{10, 128, 255, 64});
    CHECK(clear->hasAlpha);
}

TEST_CASE("Any other text is no hexadecimal color") {
    for (const std::string text : {"", "#", "0a80ff", "#0a80f", "#0a80fff", "#0a80fg", "#-1-2-3", "#+1+2+3", "# a b c",
                                   "#0a80ff400", "red", "#\xff\xff\xff"})
        CHECK_FALSE(ParseHexColour(text).has_value());
}

}  // namespace cli
