#include "kel/session/session_memory.h"

#include <doctest/doctest.h>

#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"
#include "tests/kel/session/session_text.h"

namespace kel {
namespace {

constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20U;

// The first 26 bytes of a PNG of that size, of which 33 KB can hold the rest: a gibibyte when it is unfolded.
void WriteHeader(const std::filesystem::path& file, std::uint8_t widthHigh, std::uint8_t heightHigh) {
    std::string bytes("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\0\0\0\0\0\x08\x06", 26);
    bytes[18] = static_cast<char>(widthHigh);
    bytes[22] = static_cast<char>(heightHigh);
    cli::testing::WriteText(file, bytes);
}

enum class Strokes : std::uint8_t { KeptWhereEdited, AllKept };

std::string Refusal(const Session& session, std::uint64_t memory, Strokes strokes = Strokes::KeptWhereEdited) {
    return cli::testing::Thrown([&] {
        SessionPermissions permissions;
        permissions.memory = memory;
        permissions.keepsStrokes = strokes == Strokes::AllKept;
        CheckMemory(session, SessionAccess(session, permissions), permissions);
    });
}

}  // namespace

TEST_CASE("The pictures of a session are counted together before one of them is read") {
    const cli::testing::TemporaryFolder folder;
    WriteHeader(folder / "a.png", 0x40, 0x40);  // 16384 x 16384: 256 Mi pixels, 4 bytes each, 3 times, are 3 GiB
    WriteHeader(folder / "b.png", 0x40, 0x20);  // 16384 x 8192: half of it
    WriteHeader(folder / "c.png", 0x20, 0x20);  // 8192 x 8192: a quarter
    nlohmann::json json = testing::PlainSession();
    json["containers"] = {{{"size", {1, 1}}, {"picture", "a.png"}},
                          {{"size", {1, 1}}, {"picture", "b.png"}},
                          {{"size", {1, 1}}, {"plugin", {{"parameters", {{"BrushImage", "c.png"}}}}}}};
    const Session session = ParseSession(json.dump(), folder / "s.json");
    // 3072 + 1536 + 768 and 64 MiB for the plug-in; the window of 64 x 64 takes 8 times 16 KiB more, an eighth of one.
    CHECK_EQ(Refusal(session, 5441 * mebibyte), "nothing");
    CHECK_EQ(Refusal(session, 5440 * mebibyte),
             (folder / "s.json").string() +
                 ": takes 5.3 GiB of memory, 3.0 GiB of it for the picture \"a.png\"; 5.3 GiB are allowed (--memory)");
    json["events"] = {{{"field", 1}, {"set", {{"BrushImage", "c.png"}}}}};  // the same picture is there once
    CHECK_EQ(Refusal(ParseSession(json.dump(), folder / "s.json"), 5441 * mebibyte), "nothing");
}

// Frames of 64 x 64 pixels, 44 bytes to each; the window has 4, eight times.
TEST_CASE("A video is counted by its frames, and one that says nothing is left to its reader") {
    const cli::testing::TemporaryFolder folder;
    std::filesystem::copy_file(KEL_SOURCE_FOLDER "/tests/fuzz/seeds/video/small.mp4", folder / "a.mp4");
    cli::testing::WriteText(folder / "b.mp4", "no film");
    nlohmann::json json = testing::PlainSession();
    json["containers"] = {{{"size", {1, 1}}, {"film", "a.mp4"}}, {{"size", {1, 1}}, {"film", "b.mp4"}}};
    const Session session = ParseSession(json.dump(), folder / "s.json");
    constexpr std::uint64_t taken = 64 * 64 * (44 + 8 * 4);
    CHECK_EQ(Refusal(session, taken), "nothing");
    CHECK_NE(Refusal(session, taken - 1), "nothing");
}

TEST_CASE("Many plug-ins are counted too") {
    nlohmann::json json = testing::PlainSession();
    for (int i = 0; i < 9; ++i) json["containers"].push_back({{"size", {1, 1}}, {"plugin", nlohmann::json::object()}});
    CHECK_EQ(Refusal(testing::Parse(json), 641 * mebibyte), "nothing");
    CHECK_EQ(Refusal(testing::Parse(json), 640 * mebibyte),
             "s.json: takes 640 MiB of memory, 64 MiB of it for a plug-in; 640 MiB are allowed (--memory)");
}

// A canvas of 1024 x 1024 pixels is 4 MiB: three of them and 32 checkpoints are 140.
TEST_CASE("Strokes are counted where a session edits them, or the operator keeps them all") {
    nlohmann::json json = testing::PlainSession();
    json["containers"].push_back({{"name", "other"}, {"size", {1, 1}}, {"plugin", nlohmann::json::object()}});
    CHECK_EQ(Refusal(testing::Parse(json), 129 * mebibyte), "nothing");
    CHECK_EQ(Refusal(testing::Parse(json), 407 * mebibyte, Strokes::AllKept),
             "s.json: takes 408 MiB of memory, 140 MiB of it for the strokes of a plug-in; 407 MiB are allowed "
             "(--memory)");
    CHECK_EQ(Refusal(testing::Parse(json), 409 * mebibyte, Strokes::AllKept), "nothing");
    json["events"] = {{{"field", 1}, {"container", "other"}, {"fade", {{"after", 2}}}}};
    CHECK_NE(Refusal(testing::Parse(json), 268 * mebibyte), "nothing");
    CHECK_EQ(Refusal(testing::Parse(json), 269 * mebibyte), "nothing");
}

}  // namespace kel
