#include "cli/file_claims.h"

#include <doctest/doctest.h>

#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"

namespace cli {
namespace {

namespace fs = std::filesystem;
using testing::TemporaryFolder;
using testing::Thrown;
using testing::WriteText;

class ClaimedFolder : public TemporaryFolder {
public:
    ClaimedFolder() {
        WriteText(*this / "in.png", "picture");
        fs::create_symlink("in.png", *this / "link.png");
        fs::create_hard_link(*this / "in.png", *this / "hard.png");
        fs::create_symlink("new.png", *this / "dangling.png");
        fs::create_directory(*this / "sub");
    }
    [[nodiscard]] std::string Name(const std::string& name) const { return (*this / name).string(); }
};

}  // namespace

TEST_CASE("an output that is an input is refused, by whatever name") {
    const ClaimedFolder folder;
    for (const std::string name : {"in.png", "link.png", "hard.png", "sub/../in.png"}) {
        FileClaims claims;
        claims.Read(folder / "in.png");
        CHECK_EQ(Thrown([&] { claims.Write(folder / name); }),
                 folder.Name(name) + ": cannot be written: it is read too, as " + folder.Name("in.png"));
        FileClaims other;
        other.Write(folder / name);
        CHECK_EQ(Thrown([&] { other.Read(folder / "in.png"); }),
                 folder.Name(name) + ": cannot be written: it is read too, as " + folder.Name("in.png"));
    }
}

TEST_CASE("two outputs are never one file, also one that is not there yet") {
    const ClaimedFolder folder;
    FileClaims claims;
    claims.Write(folder / "new.png");
    CHECK_EQ(Thrown([&] { claims.Write(folder / "new.png"); }),
             folder.Name("new.png") + ": two outputs have this name");
    CHECK_EQ(Thrown([&] { claims.Write(folder / "sub/../new.png"); }),
             folder.Name("sub/../new.png") + ": two outputs have this name");
    CHECK_EQ(Thrown([&] { claims.Write(folder / "dangling.png"); }),
             folder.Name("dangling.png") + ": is the same file as another output, " + folder.Name("new.png"));
    CHECK_EQ(Thrown([&] { claims.Write(folder / "newer.png"); }), "nothing");
}

TEST_CASE("an output takes the place of the one input that it may, and of no other") {
    const ClaimedFolder folder;
    WriteText(folder / "mask.png", "mask");
    FileClaims claims;
    claims.Read(folder / "in.png");
    claims.Read(folder / "mask.png");
    CHECK_EQ(Thrown([&] { claims.WriteOnto(folder / "mask.png", folder / "in.png"); }),
             folder.Name("mask.png") + ": cannot be written: it is read too, as " + folder.Name("mask.png"));
    CHECK_EQ(Thrown([&] { claims.WriteOnto(folder / "link.png", folder / "in.png"); }), "nothing");
    CHECK_EQ(Thrown([&] { claims.Write(folder / "in.png"); }),
             folder.Name("in.png") + ": is the same file as another output, " + folder.Name("link.png"));
}

TEST_CASE("standard input and output are no files") {
    FileClaims claims;
    CHECK_EQ(Thrown([&] {
                 claims.Read("-");
                 claims.Write("-");
             }),
             "nothing");
}

}  // namespace cli
