#include "cli/nearest_name.h"

#include <doctest/doctest.h>

namespace cli {

TEST_CASE("The distance of names counts letters to change, without regard to case") {
    CHECK_EQ(EditDistance("", "abc"), 3);
    CHECK_EQ(EditDistance("brushwidth", "BrushWidth"), 0);
    CHECK_EQ(EditDistance("kitten", "sitting"), 3);  // k to s, e to i, and a g
}

TEST_CASE("Names are the same whatever the case of their letters, and no others are") {
    CHECK(SameName("Hue Rotate", "hUE rOTATE"));
    CHECK(SameName("", ""));
    CHECK_FALSE(SameName("Hue", "Hues"));
    CHECK_FALSE(SameName("Hue", "Hug"));
}

TEST_CASE("A hint names the nearest, or all where none is near") {
    CHECK_EQ(NearestHint("x", {}), "");
    CHECK_EQ(NearestHint("arow", {"Alpha", "Arrow"}), "; did you mean \"Arrow\"?");
    CHECK_EQ(NearestHint("zzz", {"Alpha", "Arrow"}), "; there are \"Alpha\", \"Arrow\"");
    CHECK_EQ(NearestHint("zzz", {"Alpha"}), "; there is only \"Alpha\"");
    CHECK_EQ(Quoted(std::string(61, 'a')), '"' + std::string(60, 'a') + "...\"");
}

}  // namespace cli
