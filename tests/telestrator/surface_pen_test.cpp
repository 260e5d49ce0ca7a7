#include "telestrator/surface_pen.h"

#include <doctest/doctest.h>

#include <limits>

#include "tests/telestrator/telestrator_fixture.h"

namespace chalkpane::testing {
namespace {

TEST_CASE("A position that no int holds paints nothing") {
    CHECK(IsPaintable(-2147483648.0, 2147483647.0));
    CHECK_FALSE(IsPaintable(2147483648.0, 0));
    CHECK_FALSE(IsPaintable(0, -2147483649.0));
    CHECK_FALSE(IsPaintable(std::numeric_limits<double>::quiet_NaN(), 0));
    CHECK_FALSE(IsPaintable(0, std::numeric_limits<double>::infinity()));
    MemoryGuard memory;
    const auto reference = ReferenceSurface(5);
    CHECK_EQ(Paint(memory, reference.get(), StrokeStage::Begin, 1e300, 5), Rect());
    CHECK(IsBlank(*reference));
    CHECK_EQ(Paint(memory, nullptr, StrokeStage::Begin, 5, 5), Rect());
}

}  // namespace
}  // namespace chalkpane::testing
