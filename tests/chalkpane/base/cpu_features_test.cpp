#include "chalkpane/base/cpu_features.h"

#include <doctest/doctest.h>

#include <cstdlib>
#include <string_view>

#include "chalkpane/base/call_widest.h"
#include "tests/chalkpane/scoped_cpu_features.h"

using namespace chalkpane;
using chalkpane::test::ScopedCpuFeatures;

TEST_CASE("The environment keeps to the plain forms from the start") {
    const char* const wanted = std::getenv("CHALKPANE_CPU_FEATURES");
    if (wanted != nullptr && std::string_view(wanted) == "plain") CHECK_FALSE(HasAvx2());
}

TEST_CASE("One switch turns wide paths off, and on again where the machine has them") {
    const bool before = HasAvx2();
    {
        const ScopedCpuFeatures plain(CpuFeatures::Plain);
        CHECK_FALSE(HasAvx2());
        const ScopedCpuFeatures all(CpuFeatures::All);
        CHECK((HasAvx2() || !before));
        CHECK((builtWithAvx2 || !HasAvx2()));
    }
    CHECK_EQ(HasAvx2(), before);
}

TEST_CASE("A loop is called once, in one form or the other") {
    for (const CpuFeatures features : {CpuFeatures::Plain, CpuFeatures::All}) {
        const ScopedCpuFeatures scope(features);
        int calls = 0;
        CallWidest([&] { ++calls; });
        CHECK_EQ(calls, 1);
    }
}
