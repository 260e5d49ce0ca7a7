#include "kel/workspace/openable_files.h"

#include <doctest/doctest.h>

#include "tests/cli/temporary_folder.h"

namespace kel {
namespace {

using cli::testing::TemporaryFolder;
using cli::testing::WriteText;

std::vector<std::string> Names(const std::vector<std::filesystem::path>& files) {
    std::vector<std::string> names;
    for (const auto& file : files) names.push_back(file.filename().string());
    return names;
}

using List = std::vector<std::string>;

}  // namespace

TEST_CASE("Pictures and films of a folder are found by their endings, in order, and nothing else") {
    const TemporaryFolder folder;
    for (const std::string name : {"b.mp4", "a.PNG", "notes.txt", ".hidden.png", "c.jpg", "noending"})
        WriteText(folder / name, "x");
    std::filesystem::create_directory(folder / "d.png");
    CHECK_EQ(Names(OpenableFilesIn(folder.Path())) == List{"a.PNG", "b.mp4", "c.jpg"}, true);
    CHECK(OpenableFilesIn(folder / "gone").empty());
}

TEST_CASE("The files opened last come first, each once, and stay for the next time") {
    const TemporaryFolder folder;
    for (const std::string name : {"a.png", "b.png", "c.png"}) WriteText(folder / name, "x");
    {
        RecentFiles recent(folder / "state/kel/recent");
        for (const std::string name : {"a.png", "b.png", "c.png", "a.png"}) recent.Add(folder / name);
        CHECK_EQ(Names(recent.Files()) == List{"a.png", "c.png", "b.png"}, true);
    }
    std::filesystem::remove(folder / "c.png");
    CHECK_EQ(Names(RecentFiles(folder / "state/kel/recent").Files()) == List{"a.png", "b.png"}, true);
}

TEST_CASE("There are at most so many, and a list that cannot be kept is none") {
    const TemporaryFolder folder;
    RecentFiles recent(folder / "list");
    for (std::size_t i = 0; i < RecentFiles::most + 5; ++i) {
        WriteText(folder / (std::to_string(i) + ".png"), "x");
        recent.Add(folder / (std::to_string(i) + ".png"));
    }
    CHECK_EQ(recent.Files().size(), RecentFiles::most);
    WriteText(folder / "file", "no folder");
    RecentFiles nowhere(folder / "file/list");
    nowhere.Add(folder / "1.png");
    CHECK(RecentFiles(folder / "file/list").Files().empty());
    RecentFiles without{{}};
    without.Add(folder / "1.png");
    CHECK(without.Files().empty());
}

}  // namespace kel
