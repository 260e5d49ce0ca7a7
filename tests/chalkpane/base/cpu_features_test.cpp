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
    if (wanted != nullptr && std::string_view(wanted) == "avx2") CHECK_FALSE(HasAvx512());
}

TEST_CASE("One switch turns wide paths off, and on again where the machine has them") {
    const CpuFeatures before = UsedCpuFeatures();
    {
        const ScopedCpuFeatures plain(CpuFeatures::Plain);
        CHECK_FALSE(HasAvx2());
        CHECK_FALSE(HasAvx512());
        const ScopedCpuFeatures all(CpuFeatures::All);
        CHECK_GE(UsedCpuFeatures(), before);
        CHECK((builtWithAvx2 || !HasAvx2()));
        CHECK((HasAvx2() || !HasAvx512()));
        const bool has = HasAvx2();
        const ScopedCpuFeatures narrower(CpuFeatures::Avx2);
        CHECK_EQ(HasAvx2(), has);
        CHECK_FALSE(HasAvx512());
    }
    CHECK_EQ(UsedCpuFeatures(), before);
}

TEST_CASE("A loop is called once, in one form or the other") {
    for (const CpuFeatures features : {CpuFeatures::Plain, CpuFeatures::Avx2, CpuFeatures::All}) {
        const ScopedCpuFeatures scope(features);
        int calls = 0;
        CallWidest([&] { ++calls; });
        CHECK_EQ(calls, 1);
    }
}
