#include <doctest/doctest.h>

#include <cstdlib>
#include <string>

#include "picture_io/picture.h"
#include "tests/cli/working_folder.h"

namespace {

using cli::testing::Ended;
using cli::testing::ReadText;
using cli::testing::WorkingFolder;

// A picture, a file of strokes with one brush, and one with two.
class PresetFolder : public WorkingFolder {
public:
    PresetFolder() : WorkingFolder(CHALKPANE_PROGRAM) {
        picture_io::Picture picture(24, 16);
        for (std::int32_t y = 0; y < 16; ++y)
            for (std::int32_t x = 0; x < 24; ++x)
                picture.Set(x, y, {static_cast<std::uint8_t>(10 * x), static_cast<std::uint8_t>(15 * y), 90, 255});
        picture_io::WritePicture(picture, Path("in.png"));
        Write("one.json", Strokes(R"({"chalk": {"Size": 3, "Opacity": 0.7123456789, "Profile Name": "Texture",
            "color": "#ffd040", "filters": [{"filter": "Blur", "Softness": 1.5, "active": false}, {"filter": "Invert Color"}]}})",
                                  R"("chalk")"));
        Write("two.json", Strokes(R"({"thin": {"Size": 1}, "wide": {"Size": 6}})", R"("wide")"));
    }

    // A line that brightens for a second.
    void WriteBrightening() const {
        Write("up.preset",
              "filter 'BrightnessContrast' { 'Brightness' keys { 0 0 0 -1\n 1 0 0 0 } 'Contrast' true 0 }\n");
    }

private:
    static std::string Strokes(const std::string& brushes, const std::string& second) {
        return R"({"canvas": {"width": 60, "height": 40, "color": "#102030"}, "brushes": )" + brushes +
               R"(, "strokes": [{"brush": )" + (second == R"("wide")" ? R"("thin")" : second) +
               R"(, "points": [[5, 30], [30, 5], [55, 30]]}, {"brush": )" + second +
               R"(, "points": [[10, 10, 0.5]]}]})";
    }
};

void CheckRefusal(const Ended& ended, const std::string& complaint) {
    CHECK_EQ(ended.exitCode, 2);
    CHECK_EQ(ended.complaint, "chalkpane: " + complaint + "\n");
    CHECK_EQ(ended.output, "");
}

TEST_CASE_FIXTURE(PresetFolder, "Filters written as a preset and read back give the same pixels") {
    REQUIRE_EQ(Run("filter in.png a.png --apply 'Blur:Softness=1.23456789' --apply 'Hue Rotate:Hue Rotation=33.3'"
                   " --apply 'Luma Graph:LUT Graph=0,0;0.3,0.6;1,1' --save-preset look.preset")
                   .exitCode,
               0);
    REQUIRE_EQ(Run("filter in.png b.png --preset look.preset --save-preset again.preset").exitCode, 0);
    CHECK(Open("a.png") == Open("b.png"));
    CHECK_FALSE(Open("a.png") == Open("in.png"));
    CHECK(ReadText(Path("look.preset")).starts_with("# A Chalkpane preset\nchain \"look\" {\n    filter \"Softener\""));
    REQUIRE_EQ(Run("filter in.png c.png --preset again.preset --apply 'Invert Color'").exitCode, 0);
    CHECK_EQ(Open("c.png").At(3, 3)[0], 255 - Open("b.png").At(3, 3)[0]);
}

TEST_CASE_FIXTURE(PresetFolder, "A brush written as a preset and read back paints the same pixels") {
    REQUIRE_EQ(Run("paint one.json a.png --save-preset brush.preset").exitCode, 0);
    Write("plain.json",
          R"({"canvas": {"width": 60, "height": 40, "color": "#102030"}, "strokes": [
              {"points": [[5, 30], [30, 5], [55, 30]]}, {"points": [[10, 10, 0.5]]}]})");
    const Ended painted = Run("paint plain.json b.png --preset brush.preset --save-preset again.preset");
    REQUIRE_EQ(painted.exitCode, 0);
    CHECK(Open("a.png") == Open("b.png"));
    CHECK_EQ(ReadText(Path("brush.preset")), ReadText(Path("again.preset")));
    CHECK_NE(ReadText(Path("again.preset")).find("filter \"Softener\" inactive {"), std::string::npos);
    REQUIRE_EQ(Run("paint plain.json c.png").exitCode, 0);
    CHECK_FALSE(Open("a.png") == Open("c.png"));
}

TEST_CASE_FIXTURE(PresetFolder, "Strokes of several brushes are no preset, and nothing is written") {
    const std::ptrdiff_t before = Entries();
    CheckRefusal(Run("paint two.json out.png --save-preset brush.preset"),
                 "two.json: /strokes/1: has another brush; a preset holds a single one");
    CHECK_EQ(Entries(), before);
}

TEST_CASE_FIXTURE(PresetFolder, "A wrong preset is refused with its line, and nothing is written") {
    Write("bad.preset", "# one\nfilter 'Softener' {\n 'Filter Softnes' true 3\n}\n");
    const std::ptrdiff_t before = Entries();
    const std::string reason =
        "bad.preset:3: filter \"Softener\" has no parameter \"Filter Softnes\"; did you mean \"Filter Softness\"?";
    CheckRefusal(Run("filter in.png out.png --preset bad.preset"), reason);
    CheckRefusal(Run("paint one.json out.png --preset bad.preset"), reason);
    CheckRefusal(Run("animate in.png f%03d.png --preset bad.preset"), reason);
    CheckRefusal(Run("curve bad.preset 'Filter Softness'"), reason);
    CheckRefusal(Run("filter in.png out.png --preset missing.preset"),
                 "missing.preset: cannot be read: No such file or directory");
    CHECK_EQ(Entries(), before);
}

TEST_CASE_FIXTURE(PresetFolder, "A preset of the other kind is refused") {
    Write("brush.preset", "brush 'B' {}");
    Write("filter.preset", "filter 'Softener' {}");
    CheckRefusal(Run("filter in.png out.png --preset brush.preset"),
                 "brush.preset: is the preset of a brush; pictures go through filters");
    CheckRefusal(Run("paint one.json out.png --preset filter.preset"),
                 "filter.preset: is the preset of a filter; strokes are painted with a brush");
    CheckRefusal(Run("filter in.png out.png"), "there is no filter to run; name one with --apply or give a --preset");
}

TEST_CASE_FIXTURE(PresetFolder, "A preset names a picture that is missing") {
    Write("cut.preset", "brush 'B' { 'Brush Source Type' true 3 'Cutout File' true 'leaf.png' }");
    const Ended ended = Run("paint one.json out.png --preset cut.preset");
    CHECK_EQ(ended.exitCode, 2);
    CHECK(ended.complaint.starts_with("chalkpane: cut.preset: Cutout File: "));
    CHECK_NE(ended.complaint.find("leaf.png"), std::string::npos);
    CHECK_FALSE(Has("out.png"));
}

TEST_CASE_FIXTURE(PresetFolder, "A cutout and a mask beside the preset are found from anywhere") {
    std::filesystem::create_directory(Path("looks"));
    picture_io::Picture leaf(5, 5);
    for (std::int32_t i = 0; i < 25; ++i) leaf.Set(i % 5, i / 5, {255, 0, 0, 255});
    picture_io::WritePicture(leaf, Path("looks/leaf.png"));
    Write("looks/cut.preset",
          "brush 'B' { 'Brush Source Type' true 3 'Cutout File' true 'leaf.png' 'Profile Mask' true './leaf.png' }");
    REQUIRE_EQ(Run("paint one.json out.png --preset looks/cut.preset --save-preset copy.preset").exitCode, 0);
    // Half of the red over half of #10.
    CHECK_LE(std::abs(Open("out.png").At(10, 10)[0] - (255 + 16) / 2), 2);
    CHECK_NE(ReadText(Path("copy.preset")).find("\"Cutout File\" true \".\\\\looks\\\\leaf.png\""), std::string::npos);
}

TEST_CASE_FIXTURE(PresetFolder, "A film of filters has a picture per frame, each like the filter at that frame") {
    WriteBrightening();
    REQUIRE_EQ(Run("animate in.png f%03d.png --preset up.preset --rate 4").exitCode, 0);
    CHECK(Has("f000.png"));
    CHECK(Has("f004.png"));
    CHECK_FALSE(Has("f005.png"));
    CHECK(Open("f004.png") == Open("in.png"));
    REQUIRE_EQ(Run("filter in.png one.png --preset up.preset --rate 4 --frame 2").exitCode, 0);
    CHECK(Open("one.png") == Open("f002.png"));
    CHECK_LT(Open("f001.png").At(20, 12)[0], Open("f002.png").At(20, 12)[0]);
    REQUIRE_EQ(Run("animate in.png g%03d.png --preset up.preset --frames 50..50 --depth 14").exitCode, 0);
    CHECK(Has("g050.png"));
}

TEST_CASE_FIXTURE(PresetFolder, "A film of strokes has keyed sizes and colors") {
    Write("grow.preset",
          "brush 'Grow' { 'Brush Size' keys { 0 0 0 1\n 1 0 0 9 } 'Brush Color' keys { 0 0 0 true 0 0 0\n"
          "1 0 0 true 16383 0 0 } }");
    REQUIRE_EQ(Run("animate one.json f%02d.png --preset grow.preset --frames 0..2 --rate 2").exitCode, 0);
    REQUIRE_EQ(Run("paint one.json one.png --preset grow.preset --frame 2 --rate 2").exitCode, 0);
    CHECK(Open("f02.png") == Open("one.png"));
    CHECK_EQ(Open("f00.png").At(30, 20), Open("f00.png").At(0, 0));  // thin: only the background there
    CHECK_GT(Open("f02.png").At(30, 20)[0], 150);
    REQUIRE_EQ(Run("animate one.json g%02d.png --preset grow.preset --frames 1..1 --rate 2").exitCode, 0);
    CHECK(Open("g01.png") == Open("f01.png"));
}

TEST_CASE_FIXTURE(PresetFolder, "Frames and names of a film are checked before anything is made") {
    WriteBrightening();
    const std::ptrdiff_t before = Entries();
    CheckRefusal(Run("animate in.png f.png --preset up.preset"),
                 "f.png: must have one number such as %05d in the file's name");
    CheckRefusal(Run("animate in.png f%02d.png --preset up.preset --frames -1..3"),
                 "--frames: the first picture is that of frame 0");
    CheckRefusal(Run("animate in.png f%02d.png --preset up.preset --frames 3..1"), "--frames: \"3..1\" runs backwards");
    CheckRefusal(Run("animate in.png f%02d.png --preset up.preset --frames 0..2147483647"),
                 "--frames: a film has at most 100000 pictures at a time");
    CheckRefusal(Run("animate in.png no/f%02d.png --preset up.preset"),
                 "no/f00.png: cannot be written: there is no folder no");
    CHECK_EQ(Entries(), before);
}

TEST_CASE_FIXTURE(PresetFolder, "A curve is printed in columns or plotted") {
    WriteBrightening();
    const Ended printed = Run("curve up.preset Brightness --rate 2");
    CHECK_EQ(printed.exitCode, 0);
    CHECK_EQ(printed.output,
             "#  frame           value\n"
             "       0       -1.000000\n"
             "       1       -0.500000\n"
             "       2        0.000000\n");
    CHECK_EQ(Run("curve up.preset Contrast --frames 7..7").output,
             "#  frame           value\n       7        0.000000\n");
    REQUIRE_EQ(Run("curve up.preset Brightness --png plot.png").exitCode, 0);
    CHECK_EQ(Open("plot.png").width, 1200);
    CheckRefusal(Run("curve up.preset Brihgtness"),
                 "up.preset: there is no parameter \"Brihgtness\"; did you mean \"Brightness\"?");
    CheckRefusal(Run("curve up.preset Brightness --png plot.txt"),
                 "plot.txt: pictures end in .png, .jpg, .jpeg, .webp, .tif, .tiff, .bmp, .ppm, .pnm, .pgm, .pam, .gif, "
                 ".avif, .heic or .heif");
    Write("graph.preset", "filter 'Luma Graph' {}");
    CheckRefusal(Run("curve graph.preset 'LUT Graph'"),
                 "graph.preset: \"LUT Graph\" has no curve, as it is not made of numbers");
}

TEST_CASE_FIXTURE(PresetFolder, "The presets of the examples make their films") {
    const std::string examples = std::string(CHALKPANE_SOURCE_FOLDER) + "/examples/presets/";
    CHECK_EQ(Run("animate in.png f%02d.png --frames 40..41 --preset '" + examples + "waking.preset'").complaint, "");
    CHECK(Has("f41.png"));
    CHECK_EQ(Run("animate '" + examples + "chalk_strokes.json' g%02d.png --frames 40..40 --preset '" + examples +
                 "chalk.preset'")
                 .complaint,
             "");
    CHECK(Has("g40.png"));
}

}  // namespace
