#include "kel/workspace/keys_table.h"

#include <doctest/doctest.h>

#include <algorithm>

#include "kel/workspace/embedded_text.h"
#include "kel/workspace/fitted_keys.h"
#include "tests/cli/thrown.h"
#include "tests/kel/workspace/some_module.h"

namespace kel {
namespace {

using cli::testing::Thrown;
using testing::SomeModule;

std::string Refusal(const std::string& key) {
    return Thrown([&] { (void)ParseKeys(R"({"keys": [)" + key + "]}", "k.json"); });
}

// The refusal for a module that does not have what the key names.
std::string Unfit(const std::string& key) {
    const KeysTable table = ParseKeys(R"({"keys": [)" + key + "]}", "k.json");
    const Registration module = SomeModule();
    return Thrown([&] { (void)FitKeys(table, &module, KeyFit::All); });
}

ModuleKey Fitted(const std::string& key) {
    const KeysTable table = ParseKeys(R"({"keys": [)" + key + "]}", "k.json");
    const Registration module = SomeModule();
    return FitKey(table, table.keys[0], module).value();
}

}  // namespace

TEST_CASE("The table that the program carries has a key for everything the workspace can do, and eight colours") {
    const KeysTable table = ParseKeys(std::string(DefaultKeysText()), "keys.json");
    for (std::size_t i = 0; i < workspaceActionNames.size(); ++i) {
        CAPTURE(workspaceActionNames[i]);
        CHECK_GE(std::count_if(table.keys.begin(), table.keys.end(),
                               [&](const KeyBinding& key) {
                                   const auto* action = std::get_if<WorkspaceAction>(&key.what);
                                   return action != nullptr && *action == static_cast<WorkspaceAction>(i);
                               }),
                 1);
    }
    CHECK_EQ(std::count_if(table.keys.begin(), table.keys.end(),
                           [](const KeyBinding& key) { return std::holds_alternative<SetKey>(key.what); }),
             8);
    for (const KeyBinding& key : table.keys) CHECK_FALSE(key.about.empty());
}

TEST_CASE("Keys are written with their modifiers, in any case") {
    CHECK_EQ(ParseKeyChord("z") == KeyChord{"Z", false, false, false}, true);
    CHECK_EQ(ParseKeyChord("ctrl+SHIFT+z") == KeyChord{"Z", true, true, false}, true);
    CHECK_EQ(ParseKeyChord("Alt+f4") == KeyChord{"F4", false, false, true}, true);
    CHECK_EQ(ParseKeyChord("pageup").key, "PageUp");
    CHECK_EQ(ParseKeyChord("+").key, "+");
    CHECK_EQ(ParseKeyChord("Ctrl+5") == KeyChord{"5", true, false, false}, true);
    for (const std::string& name : KeyNames()) CHECK_EQ(ChordText(ParseKeyChord(name)), name);
    CHECK_EQ(ChordText({"Q", true, true, true}), "Ctrl+Shift+Alt+Q");
}

TEST_CASE("A sign is known by what it types, a letter by its key") {
    CHECK(IsSign({"?", false, false, false}));
    CHECK(IsSign({"]", false, false, false}));
    CHECK_FALSE(IsSign({"Q", false, false, false}));
    CHECK_FALSE(IsSign({"7", false, false, false}));
    CHECK_FALSE(IsSign({"Space", false, false, false}));
}

TEST_CASE("A wrong key is refused with its place and the nearest name") {
    CHECK_EQ(Refusal(R"({"key": "Spcae", "workspace": "pause"})"),
             "k.json: /keys/0/key: there is no key \"Spcae\"; did you mean \"Space\"?");
    CHECK_EQ(Refusal(R"({"key": "Crtl+Z", "workspace": "pause"})"),
             "k.json: /keys/0/key: there is no modifier \"Crtl\"; did you mean \"Ctrl\"?");
    CHECK_EQ(Refusal(R"({"key": "Ctrl+?", "workspace": "help"})"),
             "k.json: /keys/0/key: the sign \"?\" takes no modifier");
    CHECK_EQ(Refusal(R"({"key": "A", "workspace": "puase"})"),
             "k.json: /keys/0/workspace: the workspace has no \"puase\"; did you mean \"pause\"?");
    CHECK_EQ(Refusal(R"({"key": "A", "worspace": "pause"})"),
             "k.json: /keys/0/worspace: unknown key; did you mean \"workspace\"?");
    CHECK_EQ(Refusal(R"({"key": "A", "workspace": "pause", "abuot": "x"})"),
             "k.json: /keys/0/abuot: unknown key; did you mean \"about\"?");
    CHECK_EQ(Refusal(R"({"key": "A"})"),
             "k.json: /keys/0: the key does nothing; it needs one of \"button\", \"toggle\", \"step\", \"set\", "
             "\"workspace\"");
    CHECK_EQ(Refusal(R"({"key": "A", "button": "x", "workspace": "pause"})"),
             "k.json: /keys/0: a key does one thing, not both \"button\" and \"workspace\"");
    CHECK_EQ(Refusal(R"({"key": "A", "toggle": "On"})"), "k.json: /keys/0: \"between\" is missing");
    CHECK_EQ(Refusal(R"({"key": "A", "set": {}})"), "k.json: /keys/0/set: sets nothing");
    CHECK_EQ(Refusal(R"({"key": "A", "workspace": "pause"}, {"key": "a", "workspace": "step"})"),
             "k.json: /keys/1/key: the key stands at /keys/0 already");
    CHECK_EQ(Thrown([] { (void)ParseKeys("{\"keys\": [}", "k.json"); }).starts_with("k.json: line 1, column 11: "),
             true);
}

TEST_CASE("What a module does not have is refused with its place and the nearest name") {
    CHECK_EQ(Unfit(R"({"key": "A", "button": "Wpie"})"),
             "k.json: /keys/0/button: there is no button \"Wpie\"; did you mean \"Wipe\"?");
    CHECK_EQ(Unfit(R"({"key": "A", "toggle": "Onn", "between": [false, true]})"),
             "k.json: /keys/0/toggle: unknown parameter; did you mean \"On\"?");
    CHECK_EQ(Unfit(R"({"key": "A", "toggle": "Kind", "between": ["Draw", "Rubout"]})"),
             "k.json: /keys/0/between/1: has no option \"Rubout\"; did you mean \"Rub out\"?");
    CHECK_EQ(Unfit(R"({"key": "A", "step": ["Wide", "Knid"]})"),
             "k.json: /keys/0/step/1: unknown parameter; did you mean \"Kind\"?");
    CHECK_EQ(Unfit(R"({"key": "A", "step": ["Ink"]})"), "k.json: /keys/0/step/0: \"Ink\" is no number");
    CHECK_EQ(Unfit(R"({"key": "A", "set": {"Wide": 12}})"), "k.json: /keys/0/set/Wide: must be from 1 to 9, not 12");
    CHECK_EQ(Unfit(R"({"key": "A", "workspace": "pause"})"), "nothing");
}

TEST_CASE("A key that fits a module has its parameters and values") {
    const ModuleKey toggle = Fitted(R"({"key": "A", "toggle": "Kind", "between": ["Draw", "Rub out"]})");
    CHECK_EQ(toggle.kind == ModuleKey::Kind::Toggle, true);
    REQUIRE_EQ(toggle.settings.size(), 2);
    CHECK_EQ(toggle.settings[0].parameter, 4);
    CHECK_EQ(toggle.settings[1].value == ParameterValue(std::int32_t{1}), true);
    const ModuleKey step = Fitted(R"({"key": "A", "step": ["Deep", "Wide"], "by": -2})");
    REQUIRE_EQ(step.settings.size(), 2);
    CHECK_EQ(step.settings[1].parameter, 1);
    CHECK_EQ(step.by, -2.0);
    const ModuleKey set = Fitted(R"({"key": "A", "set": {"Ink": "#102030"}})");
    REQUIRE_EQ(set.settings.size(), 1);
    CHECK_EQ(set.settings[0].value == ParameterValue(ColourBytes{0x10, 0x20, 0x30, 0xFF}), true);
}

TEST_CASE("Keys for what a module lacks stay without use, and the others work") {
    const KeysTable table = ParseKeys(
        R"({"keys": [{"key": "A", "button": "Undo"}, {"key": "B", "button": "Wipe"}, {"key": "C", "workspace": "help"}]})",
        "k.json");
    const Registration module = SomeModule();
    const FittedKeys keys = FitKeys(table, &module, KeyFit::WhatFits);
    CHECK_FALSE(keys.keys[0].module.has_value());
    CHECK(keys.keys[1].module.has_value());
    CHECK_EQ(keys.ChordOf(WorkspaceAction::Help), "C");
    CHECK_EQ(keys.ChordOf(WorkspaceAction::Loop), "");
    CHECK_EQ(keys.ChordOfButton("Wipe"), "B");
    CHECK_EQ(keys.Find({"B", false, false, false}), &keys.keys[1]);
    CHECK_EQ(keys.Find({"B", true, false, false}), nullptr);
    const FittedKeys without = FitKeys(table, nullptr, KeyFit::All);
    CHECK_FALSE(without.keys[1].module.has_value());
}

}  // namespace kel
