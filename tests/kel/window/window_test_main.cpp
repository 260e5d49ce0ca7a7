#define DOCTEST_CONFIG_IMPLEMENT
#include <doctest/doctest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/kel/window/virtual_display.h"

int main(int argc, char** argv) {
    constexpr int skipped = 77;  // to CTest
    const char* ci = std::getenv("CI");
    const bool isCi = ci != nullptr && std::string(ci) == "true";
    if (!kel::testing::VirtualDisplay::IsPossible() && !isCi) {
        std::puts("skipped: there is no Xvfb on this machine (apt-get install xvfb)");
        return skipped;
    }
    return doctest::Context(argc, argv).run();
}
