#include "cli/file_bytes.h"

#include <doctest/doctest.h>
#include <sys/stat.h>

#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"

namespace cli {
namespace {

using testing::TemporaryFolder;
using testing::Thrown;

std::string Refusal(const std::filesystem::path& file) {
    return Thrown([&] { (void)ReadFileBytes(file); });
}

}  // namespace

TEST_CASE("A regular file is read whole, also through a link") {
    const TemporaryFolder folder;
    const std::string text(200'000, 'x');  // three steps of 65536 bytes and a rest
    testing::WriteText(folder / "text", text);
    std::filesystem::create_symlink("text", folder / "link");
    for (const char* name : {"text", "link"}) {
        const auto bytes = ReadFileBytes(folder / name);
        CHECK_EQ(std::string(bytes.begin(), bytes.end()) == text, true);
    }
}

TEST_CASE("A file is read up to the largest size and refused above it") {
    const TemporaryFolder folder;
    const std::size_t largest = std::size_t{1} << 20U;
    testing::WriteText(folder / "fits", std::string(largest, 'x'));
    testing::WriteText(folder / "large", std::string(largest + 1, 'x'));
    CHECK_EQ(ReadFileBytes(folder / "fits", largest).size(), largest);
    CHECK_EQ(Thrown([&] { (void)ReadFileBytes(folder / "large", largest); }),
             (folder / "large").string() + ": is larger than 1 MiB");
}

// None of these returns when it is read to the end, or opened without looking.
TEST_CASE("What is not a regular file is refused at once") {
    const TemporaryFolder folder;
    const std::string pipe = (folder / "pipe").string();
    REQUIRE_EQ(mkfifo(pipe.c_str(), 0600), 0);
    CHECK_EQ(Refusal(pipe), pipe + ": is not a regular file");
    CHECK_EQ(Refusal("/dev/zero"), "/dev/zero: is not a regular file");
    CHECK_EQ(Refusal(folder.Path()), folder.Path().string() + ": is a folder");
    CHECK_EQ(Thrown([&] { RequireRegularFile(pipe); }), pipe + ": is not a regular file");
    CHECK_EQ(Thrown([&] { RequireRegularFile(folder.Path()); }), folder.Path().string() + ": is a folder");
}

TEST_CASE("A file that is not there is told by the system's own words") {
    const TemporaryFolder folder;
    const std::string none = (folder / "none").string();
    CHECK_EQ(Refusal(none), none + ": cannot be read: No such file or directory");
    CHECK_EQ(Thrown([&] { RequireRegularFile(none); }), "nothing");
}

}  // namespace cli
