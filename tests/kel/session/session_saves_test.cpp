#include "kel/session/session_saves.h"

#include <doctest/doctest.h>

#include "tests/cli/thrown.h"
#include "tests/kel/kel_folder.h"
#include "tests/kel/pixels.h"

namespace kel {
namespace {

using nlohmann::json;
using testing::CheckRefused;
using testing::KelFolder;

const json save = {{{"field", 3}, {"save", "three.png"}}};

json Saving(const std::string& name) { return testing::SessionWith("/events", {{{"field", 3}, {"save", name}}}); }

}  // namespace

TEST_CASE("What a session saves goes into a folder named after it") {
    const KelFolder folder(testing::SessionWith("/events", save));
    CHECK_EQ(folder.Run("play s.json").exitCode, 0);
    CHECK_EQ(folder.Open("s/three.png").width, 64);
    CHECK_EQ(folder.Entries(), 2);
}

TEST_CASE("The folder of a session that saves nothing, or does not play, is not made") {
    const KelFolder plain;
    CHECK_EQ(plain.Run("play s.json").exitCode, 0);
    CHECK_EQ(plain.Entries(), 1);
    json broken = testing::SessionWith("/events", save);
    broken["containers"][0]["picture"] = "none.png";
    const KelFolder folder(broken);
    CheckRefused(folder, "play s.json",
                 "s.json: /containers/0/picture: none.png: cannot be read: No such file or directory");
}

TEST_CASE("A save replaces nothing that the run has not made, unless it is told to") {
    const KelFolder folder(testing::SessionWith("/events", save));
    std::filesystem::create_directory(folder.Path("s"));
    folder.Write("s/three.png", "old");
    CheckRefused(folder, "play s.json", "s/three.png: is there already; --overwrite lets the session replace it");
    CheckRefused(folder, "play s.json --saves s",
                 "s/three.png: is there already; --overwrite lets the session replace it");
    CHECK_EQ(cli::testing::ReadText(folder.Path("s/three.png")), "old");
    CHECK_EQ(folder.Run("play s.json --overwrite").exitCode, 0);
    CHECK_EQ(folder.Open("s/three.png").width, 64);
}

TEST_CASE("A save goes through no link, not even when it may replace files") {
    const KelFolder folder(testing::SessionWith("/events", save));
    std::filesystem::create_directory(folder.Path("s"));
    folder.Write("victim.png", "old");
    std::filesystem::create_symlink("../victim.png", folder.Path("s/three.png"));
    for (const char* option : {"", " --overwrite"})
        CheckRefused(folder, std::string("play s.json") + option,
                     "s/three.png: cannot be written: what has this name is not a regular file");
    CHECK_EQ(cli::testing::ReadText(folder.Path("victim.png")), "old");
}

TEST_CASE("A link or a file in place of the session's folder is refused") {
    const std::string line = "s.json: the folder s for what it saves cannot be made; --saves names another";
    const KelFolder folder(testing::SessionWith("/events", save));
    std::filesystem::create_directory_symlink("/tmp", folder.Path("s"));
    CheckRefused(folder, "play s.json", line);
    std::filesystem::remove(folder.Path("s"));
    folder.Write("s", "a file");
    CheckRefused(folder, "play s.json", line);
}

TEST_CASE("A file of dots names no folder above its own") {
    const KelFolder folder;
    folder.Write("...json", testing::SessionWith("/events", save).dump());
    CHECK_EQ(folder.Run("play ...json").exitCode, 0);
    CHECK_EQ(folder.Open("session/three.png").width, 64);
}

TEST_CASE("A saved picture has a plain name") {
    const auto refusal = [](const std::string& name) {
        return cli::testing::Thrown([&] { (void)testing::Parse(Saving(name)); });
    };
    CHECK_EQ(refusal("..png"), "s.json: /events/0/save: must not begin with a dot");
    CHECK_EQ(refusal(".hidden.png"), "s.json: /events/0/save: must not begin with a dot");
    for (const char* name : {"/a.png", "../a.png", "a/b.png", "a\\b.png"})
        CHECK_EQ(refusal(name),
                 "s.json: /events/0/save: must be a file name without a folder; `kel play --saves` says where to");
    CHECK_EQ(refusal("a..png"), "nothing");
}

}  // namespace kel
