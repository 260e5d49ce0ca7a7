#include <doctest/doctest.h>

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "picture_io/picture.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/terminal.h"
#include "tests/kel/kel_folder.h"
#include "tests/kel/pixels.h"
#include "tests/kel/session/session_text.h"

// The programs themselves, run as an operator runs them.

namespace kel {
namespace {

using cli::testing::Ended;
using nlohmann::json;
using testing::CheckRefused;
using testing::CheckRefusedLike;
using testing::KelFolder;
using testing::SessionWith;

// A pixel of the small window is 16 of the canvas, so its middle lies up to 8 beside the middle of a soft pen.
constexpr int besideTheMiddle = 8;

const json redStroke = {{{"field", 1}, {"set", {{"BrushColor", "#ff0000"}, {"BrushWidth", 30}}}},
                        {{"field", 2}, {"fields", 8}, {"stroke", {{16, 32}, {48, 32}}}}};

}  // namespace

TEST_CASE("kel info shows a table of parameters and one of buttons") {
    const KelFolder folder;
    const Ended ended = folder.Run("info " CHALKPANE_MODULE);
    CHECK_EQ(ended.exitCode, 0);
    CHECK_EQ(ended.complaint, "");
    CHECK(
        ended.output.starts_with("Chalkpane: plug-in type 2, folder \"Texture\", instance block of 1392 bytes\n\n"
                                 "#   parameter     label               kind   default    values\n"
                                 "1   Active        Active              bool   true\n"
                                 "2   TexUnit       Texture             int    1          0 .. 2\n"));
    CHECK_NE(ended.output.find("4   Alpha         Alpha               float  100        0 .. 100      hidden\n"),
             std::string::npos);
    CHECK_NE(ended.output.find("5   BrushType     Brush Type          radio  Color      Color, Erase\n"),
             std::string::npos);
    CHECK_NE(ended.output.find("9   BrushColor    Brush Color         color  #000000f0\n"), std::string::npos);
    CHECK(ended.output.ends_with("\n\nbutton  label  action\nClear   Clear  0\nUndo    Undo   1\n"));
}

TEST_CASE("kel info --json says the same to programs") {
    const KelFolder folder;
    const Ended ended = folder.Run("info --json " CHALKPANE_MODULE);
    CHECK_EQ(ended.exitCode, 0);
    const json info = json::parse(ended.output);
    CHECK_EQ(info["name"], "Chalkpane");
    CHECK_EQ(info["type"], 2);
    CHECK_EQ(info["folder"], "Texture");
    CHECK_EQ(info["blockSize"], 1392);
    REQUIRE_EQ(info["parameters"].size(), 20);
    CHECK_EQ(info["parameters"][0],
             json::parse(R"({"name": "Active", "label": "Active", "kind": "bool", "default": true, "hidden": false})"));
    CHECK_EQ(info["parameters"][4], json::parse(R"({"name": "BrushType", "label": "Brush Type", "kind": "radio",
        "default": "Color", "options": ["Color", "Erase"], "hidden": false})"));
    CHECK_EQ(info["parameters"][6], json::parse(R"({"name": "BrushWidth", "label": "Brush Width", "kind": "int",
        "default": 5, "minimum": 1, "maximum": 30, "hidden": false})"));
    CHECK_EQ(info["parameters"][3]["hidden"], true);
    CHECK_EQ(info["buttons"][1], json::parse(R"({"name": "Undo", "label": "Undo", "action": 1})"));
}

#ifdef KEL_LACKS_SERVER
TEST_CASE("kel control says which library this kel was built without") {
    const KelFolder folder;
    CheckRefused(folder, "control 8700 'button Undo'",
                 "kel control is left out: this kel was built without libwebsockets");
}
#endif

#ifdef KEL_HAS_WINDOW
TEST_CASE("kel window without a display ends at once with one line") {
    const KelFolder folder;
    const Ended ended =
        folder.Run("window s.json", KEL_PROGRAM, "unset DISPLAY WAYLAND_DISPLAY XDG_RUNTIME_DIR SDL_VIDEODRIVER;");
    CHECK_EQ(ended.exitCode, 2);
    CHECK(ended.complaint.starts_with("kel: no window: "));
    CHECK_EQ(std::ranges::count(ended.complaint, '\n'), 1);
    CHECK_EQ(ended.output, "");
}
#endif

TEST_CASE("kel play writes the last picture and the strokes alone") {
    const KelFolder folder(SessionWith("/events", redStroke));
    const Ended ended = folder.Run("play s.json --out out.png --canvas overlay.png");
    CHECK_EQ(ended.exitCode, 0);
    CHECK_EQ(ended.output, "");
    CHECK_EQ(ended.complaint, "");
    const picture_io::Picture out = folder.Open("out.png");
    CHECK_EQ(out.width, 64);
    CHECK_LE(testing::Difference(out.At(32, 32), testing::red), besideTheMiddle);
    CHECK_EQ(testing::Difference(out.At(32, 10), testing::white), 0);
    const picture_io::Picture overlay = folder.Open("overlay.png");
    CHECK_EQ(overlay.width, 1024);
    CHECK_LE(testing::Difference(overlay.At(512, 511), testing::red), 3);  // the densest that a dab gets
    CHECK_EQ(overlay.At(512, 200)[3], 0);
    CHECK_EQ(folder.Entries(), 3);
}

TEST_CASE("kel play numbers its frames from 0") {
    const KelFolder folder(SessionWith("/events", redStroke));
    CHECK_EQ(folder.Run("play s.json --frames f%03d.png --out out.png").exitCode, 0);
    CHECK_EQ(folder.Entries(), 22);
    CHECK_EQ(testing::Difference(folder.Open("f000.png").At(32, 32), testing::white), 0);
    CHECK_EQ(folder.Open("f019.png") == folder.Open("out.png"), true);
    // Half way at field 6; the ball of the pen is far from the right end, window pixel 48.
    CHECK_LE(testing::Difference(folder.Open("f006.png").At(24, 32), testing::red), besideTheMiddle);
    CHECK_EQ(testing::Difference(folder.Open("f006.png").At(46, 32), testing::white), 0);
}

TEST_CASE("kel play writes what a session saves, where it is told to") {
    json events = redStroke;
    events.push_back({{"field", 0}, {"save", "before.png"}});
    events.push_back({{"field", 10}, {"save", "after.jpg"}});
    const KelFolder folder(SessionWith("/events", events));
    std::filesystem::create_directory(folder.Path("saved"));
    CHECK_EQ(folder.Run("play s.json --saves saved").exitCode, 0);
    CHECK_EQ(testing::Difference(folder.Open("saved/before.png").At(32, 32), testing::white), 0);
    const auto after = folder.Open("saved/after.jpg").At(32, 32);
    CHECK_GT(after[0], after[1] + 200);  // JPEG is not exact
    CHECK_EQ(folder.Entries(), 2);
}

TEST_CASE("kel play replaces what stood there only when all went well") {
    const KelFolder good(SessionWith("/events", redStroke));
    good.Write("out.png", "old");
    CHECK_EQ(good.Run("play s.json --out out.png").exitCode, 0);
    CHECK_EQ(good.Open("out.png").width, 64);

    const KelFolder bad(SessionWith("/fields", 0));
    bad.Write("out.png", "old");
    CHECK_EQ(bad.Run("play s.json --out out.png").exitCode, 2);
    CHECK_EQ(cli::testing::ReadText(bad.Path("out.png")), "old");
}

TEST_CASE("kel play counts fields on a terminal and is silent elsewhere" *
          doctest::skip(!cli::testing::TerminalIsPossible())) {
    const KelFolder folder;
    const std::string shown = cli::testing::RunOnTerminal(folder, KEL_PROGRAM, "play s.json --out out.png");
    CAPTURE(shown);
    CHECK_NE(shown.find("field 20 of 20"), std::string::npos);
    CHECK(shown.ends_with("\r\033[K"));
    CHECK_EQ(folder.Run("play s.json --out out.png").complaint, "");
}

TEST_CASE("A command line that makes no sense is one line and exit code 2") {
    const KelFolder folder;
    CheckRefusedLike(folder, "", "command line: .*");
    CheckRefusedLike(folder, "paint", "command line: .*");
    CheckRefusedLike(folder, "play", "command line: .*session.*");
    CheckRefusedLike(folder, "play s.json --ot out.png", "command line: .*--ot.*");
    CheckRefusedLike(folder, "play s.json --out", "command line: .*--out.*");
    CheckRefusedLike(folder, "info", "command line: .*module.*");
    const Ended help = folder.Run("--help");
    CHECK_EQ(help.exitCode, 0);
    CHECK_NE(help.output.find("play"), std::string::npos);
}

TEST_CASE("A session that is no session is refused with file, place and reason") {
    const KelFolder folder;
    CheckRefused(folder, "play none.json --out o.png", "none.json: cannot be read: No such file or directory");
    CheckRefused(folder, "play . --out o.png", ".: is a folder");
    folder.Write("b.json", "{\"window\": {\n}, x}");
    CheckRefusedLike(folder, "play b.json --out o.png", "b\\.json: line 2, column 4: syntax error.*");
    folder.Write("b.json", SessionWith("/camera/postion", 1).dump());
    CheckRefused(folder, "play b.json --out o.png", "b.json: /camera/postion: unknown key; did you mean \"position\"?");
    folder.Write("b.json", SessionWith("/window/width", "64").dump());
    CheckRefused(folder, "play b.json --out o.png",
                 "b.json: /window/width: must be a whole number from 1 to 8192, not the text \"64\"");
    folder.Write("b.json", SessionWith("/containers/0", json::object()).dump());
    CheckRefused(folder, "play b.json --out o.png", "b.json: /containers/0: \"size\" is missing");
}

TEST_CASE("What does not fit the module is refused with file, place and reason") {
    const KelFolder folder;
    const auto check = [&](const char* pointer, const json& value, const std::string& line) {
        folder.Write("b.json", SessionWith(pointer, value).dump());
        CheckRefused(folder, "play b.json --out o.png", line);
    };
    check("/containers/0/plugin/parameters", {{"BrushWidth", 31}},
          "b.json: /containers/0/plugin/parameters/BrushWidth: must be from 1 to 30, not 31");
    check("/containers/0/plugin/parameters", {{"BrushWdth", 3}},
          "b.json: /containers/0/plugin/parameters/BrushWdth: unknown parameter; did you mean \"BrushWidth\"?");
    check("/containers/0/plugin/parameters", {{"BrushType", "Colour"}},
          "b.json: /containers/0/plugin/parameters/BrushType: has no option \"Colour\"; did you mean \"Color\"?");
    check("/events/0", {{"field", 1}, {"button", "Clean"}},
          "b.json: /events/0/button: there is no button \"Clean\"; did you mean \"Clear\"?");
    check("/containers/0/picture", "none.png",
          "b.json: /containers/0/picture: none.png: cannot be read: No such file or directory");
}

TEST_CASE("A key with a line break in its name is still one line") {
    const KelFolder folder(SessionWith("/two\nlines", 1));
    CheckRefusedLike(folder, "play s.json", "s\\.json: /two lines: unknown key.*");
}

TEST_CASE("A module that is none is refused with its file and the reason") {
    const KelFolder folder;
    folder.Write("text.qop", "no module");
    CheckRefused(folder, "info none.qop", "none.qop: there is no such module");
    CheckRefusedLike(folder, "info text.qop", "text\\.qop: does not load: .*");
    CheckRefused(folder, "info " MOUSELESS_MODULE, MOUSELESS_MODULE ": lacks the entry point PLUGIN_MOUSE_CALLBACK");
    CheckRefused(folder, "play s.json --out o.png --module none.qop", "none.qop: there is no such module");
    CheckRefusedLike(folder, "play s.json --out o.png --module text.qop", "text\\.qop: does not load: .*");
    CheckRefused(folder, "play s.json --out o.png --module " MOUSELESS_MODULE,
                 MOUSELESS_MODULE ": lacks the entry point PLUGIN_MOUSE_CALLBACK");
}

TEST_CASE("An output that cannot be written is refused before anything is played") {
    const KelFolder folder;
    std::filesystem::create_directory(folder.Path("folder.png"));
    CheckRefused(folder, "play s.json --out none/o.png", "none/o.png: cannot be written: there is no folder none");
    CheckRefused(folder, "play s.json --out folder.png", "folder.png: cannot be written: it is a folder");
    CheckRefused(folder, "play s.json --out o.movie",
                 "o.movie: neither a picture nor a film ends in \".movie\"; did you mean \".mov\"?");
    CheckRefused(folder, "play s.json --out o.png --canvas ./o.png", "./o.png: two outputs have this name");
    CheckRefused(folder, "play s.json --frames none/f%05d.png",
                 "none/f00000.png: cannot be written: there is no folder none");
}

TEST_CASE("An output that fails at the end leaves no other behind") {
    const KelFolder folder;
    const Ended ended = folder.Run("play s.json --out o.png --canvas /proc/overlay.png");
    CHECK_EQ(ended.exitCode, 2);
    CHECK(ended.complaint.starts_with("kel: /proc/overlay.png: "));
    CHECK_EQ(folder.Entries(), 1);
}

TEST_CASE("The pattern of frames has exactly one padded number, in the file's name") {
    const KelFolder folder;
    std::filesystem::create_directory(folder.Path("d%02d"));
    for (const char* pattern : {"f.png", "f%d.png", "f%5d.png", "f%0d.png", "f%05d%05d.png", "f%05x.png", "f%%05d.png",
                                "f%012d.png", "d%02d/f.png", "f%05"})
        CheckRefused(folder, std::string("play s.json --frames ") + pattern,
                     std::string(pattern) + ": must have one number such as %05d in the file's name");
}

TEST_CASE("An overlay needs a container with a plug-in") {
    const KelFolder folder(SessionWith("/containers/0", {{"size", {100, 100}}}));
    CheckRefused(folder, "play s.json --canvas o.png",
                 "s.json: /containers: no container has a plug-in, so there is no overlay");
    CHECK_EQ(folder.Run("play s.json --out o.png").exitCode, 0);
    CHECK_EQ(testing::Difference(folder.Open("o.png").At(32, 32), testing::white), 0);
}

TEST_CASE("The examples' pitch is the one that make_pitch draws") {
    const KelFolder folder;
    CHECK_EQ(folder.Run("pitch.png", KEL_MAKE_PITCH).exitCode, 0);
    CHECK_EQ(folder.Open("pitch.png") == picture_io::ReadPicture(KEL_SOURCE_FOLDER "/examples/pitch.png"), true);
}

TEST_CASE("The examples' test card is the one that make_test_card draws") {
    const KelFolder folder;
    CHECK_EQ(folder.Run("card.png front.png", KEL_MAKE_TEST_CARD).exitCode, 0);
    CHECK_EQ(folder.Open("front.png") == picture_io::ReadPicture(KEL_SOURCE_FOLDER "/examples/test-card-front.png"),
             true);
    CHECK_EQ(folder.Open("card.png") == picture_io::ReadPicture(KEL_SOURCE_FOLDER "/examples/test-card.png"), true);
}

TEST_CASE("All examples play") {
    for (const auto& entry : std::filesystem::directory_iterator(KEL_SOURCE_FOLDER "/examples")) {
        if (entry.path().extension() != ".json") continue;
        const KelFolder folder;
        CAPTURE(entry.path().string());
        const Ended ended = folder.Run("play " + entry.path().string() + " --out o.png --canvas overlay.png");
        CHECK_EQ(ended.exitCode, 0);
        CHECK_EQ(ended.complaint, "");
        const json session = json::parse(cli::testing::ReadText(entry.path()));
        CHECK_EQ(folder.Open("o.png").width, session["window"]["width"]);
        const auto overlay = folder.Open("overlay.png").rgba;
        std::size_t painted = 0;
        for (std::size_t i = 3; i < overlay.size(); i += 4) painted += overlay[i] > 127 ? 1 : 0;
        CHECK_EQ(painted > 1000, session.contains("events"));  // one of them is there to be drawn on
    }
}

}  // namespace kel
