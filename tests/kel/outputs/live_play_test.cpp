#include <doctest/doctest.h>

#include <regex>

#include "kel/video/video_reader.h"
#include "tests/kel/kel_folder.h"
#include "tests/kel/outputs/stream_reader.h"
#include "tests/kel/pixels.h"

// Sessions that are sent live while they play, as an operator runs them.

namespace kel {
namespace {

using testing::AddressIn;
using testing::AwaitThat;
using testing::ChildProgram;
using testing::StreamReader;

// A stroke, and then more time than any test waits for.
nlohmann::json LongSession() {
    nlohmann::json session = testing::SessionWith("/fields", 100000);
    session["events"] = {{{"field", 1}, {"set", {{"BrushColor", "#ff0000"}, {"BrushWidth", 30}}}},
                         {{"field", 2}, {"press", {16, 32}}},
                         {{"field", 3}, {"release", {48, 32}}}};
    return session;
}

}  // namespace

TEST_CASE("A play goes on when its reader is killed, and tells how its live outputs did when it is stopped") {
    const testing::KelFolder folder(LongSession());
    const std::string said = folder.Path("said");
    ChildProgram play(
        {KEL_PROGRAM, "play", folder.Path("s.json"), "--live", "tcp://:0", "--live-overlay", "tcp://:0?alpha=straight"},
        said);
    AwaitThat("it says where it is read", [&] { return !AddressIn(said, 1).empty(); });
    StreamReader killed = StreamReader::Endless(AddressIn(said, 0));
    StreamReader strokes(AddressIn(said, 1), 10);
    CHECK_EQ(strokes.Program().WaitForEnd(), 0);
    AwaitThat("the other is read", [&] { return killed.HasRead(); });
    killed.Kill();
    StreamReader next(AddressIn(said, 0), 10);
    CHECK_EQ(next.Program().WaitForEnd(), 0);
    // The middle of the stroke over a white page, as the picture and alone: red, however much of it a soft pen leaves.
    const picture_io::Picture picture = next.Last(64, 64);
    REQUIRE_FALSE(picture.rgba.empty());
    CHECK_GE(picture.At(32, 32)[0], 250);
    CHECK_LE(picture.At(32, 32)[1], 60);
    CHECK(strokes.Last(64, 64).At(2, 2) == testing::Pixel{0, 0, 0, 0});
    play.Signal(SIGINT);
    CHECK_EQ(play.WaitForEnd(), 130);
    const std::string line = "live: tcp://127\\.0\\.0\\.1:[0-9]+: ";
    const std::string end = "[0-9]+ pictures sent, [0-9]+ dropped, [1-9] readers?, [0-9.]+ ms of processor time each\n";
    const std::string text = cli::testing::ReadText(said);
    CAPTURE(text);
    CHECK(std::regex_match(text, std::regex(line + "picture, NUT with FFV1, gamma, full range\n" + line +
                                            "strokes with alpha, NUT with FFV1, straight, gamma, full range\n" + line +
                                            end + line + end)));
}

TEST_CASE("A play that nobody reads plays to its end, and writes its files as without") {
    const testing::KelFolder folder(testing::SessionWith("/fields", 5));
    const cli::testing::Ended ended = folder.Run(
        "play s.json --live tcp://:0 --live-key tcp://:0 --live-fill tcp://:0"
        " --out a.mkv");
    CHECK_EQ(ended.exitCode, 0);
    CHECK_EQ(ended.complaint, "");
    CHECK_NE(ended.output.find(": 0 pictures sent, 0 dropped, 0 readers\n"), std::string::npos);
    CHECK_EQ(VideoReader(folder.Path("a.mkv")).FrameCount(), 5);
}

}  // namespace kel
