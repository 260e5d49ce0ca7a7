#include "kel/module_loading/module.h"

#include <doctest/doctest.h>

#include "module/abi/host_api.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"
#include "tests/kel/probe.h"

namespace kel {
namespace {

using cli::testing::TemporaryFolder;
using cli::testing::Thrown;

// What the host says to a module that registers like this.
std::string Refusal(const std::function<void()>& registration, std::int32_t answer = 0) {
    ProbeHooks hooks;
    hooks.registration = registration;
    hooks.initAnswer = answer;
    testing::UseHooks(&hooks);
    Host host({8, 8});
    std::string reason = Thrown([&] { host.LoadModule(PROBE_MODULE); });
    testing::UseHooks(nullptr);
    return reason;
}

}  // namespace

TEST_CASE("A module is read as it registered itself") {
    Host host({8, 8});
    const Registration& registration = host.LoadModule(CHALKPANE_MODULE).registration;
    CHECK_EQ(registration.name, "Chalkpane");
    CHECK_EQ(registration.type, 2);
    CHECK_EQ(registration.folder, "Texture");
    CHECK_EQ(registration.blockSize, 1392);
    REQUIRE_EQ(registration.parameters.size(), 20);
    REQUIRE_EQ(registration.buttons.size(), 2);
    CHECK_EQ(registration.FindButton("Undo")->action, 1);
    CHECK_EQ(registration.FindParameter("Nonsense"), nullptr);

    const Parameter& width = *registration.FindParameter("EraserWidth");
    CHECK_EQ(width.label, "Eraser Brush Width");
    CHECK(width.defaultValue == ParameterValue(10));
    CHECK_EQ(width.maximum, 60);
    CHECK(registration.FindParameter("Alpha")->hidden);
    CHECK_EQ(registration.FindParameter("BrushType")->options, std::vector<std::string>{"Color", "Erase"});
    // 0xF0000000 in memory order on this machine: alpha is the last byte.
    CHECK(registration.FindParameter("BrushColor")->defaultValue == ParameterValue(ColourBytes{0, 0, 0, 0xF0}));
}

// Five fields of 4 bytes end at 20; the address of the image's name wants a multiple of 8: 24. Then 4 bytes each from
// 32: 14 fields to 88, the last at 84.
TEST_CASE("Parameters lie in the block by natural alignment in the order of registration") {
    Host host({8, 8});
    const auto& parameters = host.LoadModule(CHALKPANE_MODULE).registration.parameters;
    const std::size_t address = sizeof(void*);
    CHECK_EQ(parameters[0].offset, 0);
    CHECK_EQ(parameters[4].name, "BrushType");
    CHECK_EQ(parameters[4].offset, 16);
    CHECK_EQ(parameters[5].offset, address == 8 ? 24 : 20);
    CHECK_EQ(parameters[6].offset, parameters[5].offset + address);
    CHECK_EQ(parameters[19].offset, parameters[6].offset + std::size_t{13} * 4);
}

TEST_CASE("The same file gives the same module") {
    Host host({8, 8});
    CHECK_EQ(&host.LoadModule(CHALKPANE_MODULE), &host.LoadModule(CHALKPANE_MODULE));
}

TEST_CASE("A module that is missing, or no module, is refused in one line") {
    const TemporaryFolder folder;
    const auto missing = folder / "missing.qop";
    CHECK_EQ(Thrown([&] { (void)OpenModule(missing); }), missing.string() + ": there is no such module");
    const auto text = folder / "text.qop";
    cli::testing::WriteText(text, "not a module");
    const std::string reason = Thrown([&] { (void)OpenModule(text); });
    CHECK_MESSAGE(reason.starts_with(text.string() + ": does not load: "), reason);
    CHECK_EQ(reason.find('\n'), std::string::npos);
    CHECK_EQ(reason.find(text.string(), 1), std::string::npos);
}

TEST_CASE("A module that lacks an entry point is refused by its name") {
    CHECK_EQ(Thrown([] { (void)OpenModule(MOUSELESS_MODULE); }),
             std::string(MOUSELESS_MODULE) + ": lacks the entry point PLUGIN_MOUSE_CALLBACK");
}

TEST_CASE("A module whose registration answers other than 0 is refused") {
    CHECK_EQ(Refusal(testing::RegisterProbe, 3), std::string(PROBE_MODULE) + ": PLUGIN_INIT_EX answers 3");
}

// "Switch" and "Count" take 8 bytes, the address of "Name" 8 more.
TEST_CASE("A block too small for its parameters is refused") {
    const auto tooSmall = [] {
        testing::RegisterProbe();
        qoRegisterTotalSize(15);
    };
    CHECK_EQ(Refusal(tooSmall),
             std::string(PROBE_MODULE) + ": registers 15 bytes for an instance whose parameters take 16");
    CHECK_NE(Refusal([] { qoRegisterPlugin("no block"); }), "nothing");
    CHECK_NE(Refusal([] { qoRegisterTotalSize(-1392); }), "nothing");
}

TEST_CASE("A default beyond its own limits is refused") {
    const auto contradiction = [] {
        testing::RegisterProbe();
        qoRegisterParameterInt("Odd", "Odd", 12, 0, 10);
    };
    CHECK_EQ(Refusal(contradiction),
             std::string(PROBE_MODULE) + ": default of parameter \"Odd\": 12 is above the maximum 10");
}

}  // namespace kel
