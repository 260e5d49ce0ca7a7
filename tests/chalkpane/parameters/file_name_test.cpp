#include "chalkpane/parameters/file_name.h"

#include <doctest/doctest.h>

namespace {

using namespace chalkpane;

std::string Relative(const char* name, const char* base) { return FileName(name).relativeTo(base); }
std::string Absolute(const char* name, const char* base) { return FileName(name).absolute(base); }

TEST_CASE("Slashes become backslashes on assignment") { CHECK_EQ(FileName("C:/a/b.png").string(), "C:\\a\\b.png"); }

TEST_CASE("A path splits into drive, directory, name and extension") {
    const SplitPath split("C:\\art\\brushes/chalk.v2.png");
    CHECK_EQ(split.drive, "C:");
    CHECK_EQ(split.directory, "\\art\\brushes/");
    CHECK_EQ(split.name, "chalk.v2");
    CHECK_EQ(split.extension, ".png");
    const SplitPath bare("chalk");
    CHECK_EQ(bare.drive + bare.directory + bare.extension, "");
    CHECK_EQ(bare.name, "chalk");
    CHECK_EQ(SplitPath("a.b\\c").extension, "");
}

TEST_CASE("Directories are normalised, with or without a leading pair of separators") {
    CHECK_EQ(normaliseDirectory("//a//b\\\\/c", LeadingSeparators::Collapse), "\\a\\b\\c");
    CHECK_EQ(normaliseDirectory("//a//b", LeadingSeparators::Keep), "\\\\a\\b");
    CHECK_EQ(normaliseDirectory("////a", LeadingSeparators::Keep), "\\\\a");
}

TEST_CASE("A name below the base begins with a dot") {
    CHECK_EQ(Relative("C:\\work\\show\\art\\a.png", "C:\\work\\show\\"), ".\\art\\a.png");
    CHECK_EQ(Relative("C:\\WORK\\Show\\a.png", "C:\\work\\show\\"), ".\\a.png");
    CHECK_EQ(Relative("c:\\shows\\news\\today\\sub\\b.tga", "C:\\shows\\news\\today\\"), ".\\sub\\b.tga");
}

TEST_CASE("A name beside the base climbs once per directory that is left of the base") {
    CHECK_EQ(Relative("C:\\work\\other\\a.png", "C:\\work\\show\\"), "..\\other\\a.png");
    CHECK_EQ(Relative("C:\\work\\a.png", "C:\\work\\show\\take\\"), "..\\..\\a.png");
    CHECK_EQ(Relative("C:\\work\\shore\\a", "C:\\work\\show\\"), "..\\shore\\a");  // "sho" in common is no directory
}

TEST_CASE("Names with another drive or nothing but the root in common stay") {
    CHECK_EQ(Relative("D:\\work\\show\\a.png", "C:\\work\\show\\"), "D:\\work\\show\\a.png");
    CHECK_EQ(Relative("C:\\else\\a.png", "C:\\work\\show\\"), "C:\\else\\a.png");
    CHECK_EQ(Relative("a.png", "C:\\work\\"), "a.png");
    CHECK_EQ(Relative("C:\\work\\a.png", ""), "C:\\work\\a.png");
}

TEST_CASE("A relative name is found from the base") {
    CHECK_EQ(Absolute(".\\art\\a.png", "C:\\work\\show\\"), "C:\\work\\show\\art\\a.png");
    CHECK_EQ(Absolute("./a.png", "C:\\work\\show"), "C:\\work\\show\\a.png");
    CHECK_EQ(Absolute("..\\other\\a.png", "C:\\work\\show\\"), "C:\\work\\other\\a.png");
    CHECK_EQ(Absolute("..\\..\\a.png", "C:\\work\\show\\"), "C:\\a.png");
}

TEST_CASE("Climbing stops at the root") { CHECK_EQ(Absolute("..\\..\\..\\..\\a", "C:\\work\\"), "C:\\a"); }

TEST_CASE("Any other name stays") {
    for (const char* name : {"", ".", "a.png", ".hidden", "C:\\a", "\\a"})
        CHECK_EQ(Absolute(name, "C:\\work\\"), std::string(name));
    CHECK_EQ(Absolute("..a", "C:\\work\\"), "C:\\work\\..a");  // two dots are enough to be found from the base
}

TEST_CASE("Relative and back is the same name") {
    const char* base = "C:\\work\\show\\take\\";
    for (const char* name : {"C:\\work\\show\\take\\a.b", "C:\\work\\a", "C:\\work\\show\\x\\y\\z.png"})
        CHECK_EQ(FileName(FileName(name).relativeTo(base)).absolute(base), std::string(name));
}

TEST_CASE("The module has one base directory") {
    CHECK_EQ(FileName::baseDirectory(), "");
    FileName::setBaseDirectory("C:\\work\\show\\");
    CHECK_EQ(FileName("C:\\work\\show\\a").relativeTo(), ".\\a");
    CHECK_EQ(FileName(".\\a").absolute(), "C:\\work\\show\\a");
    FileName::setBaseDirectory("");
}

}  // namespace
