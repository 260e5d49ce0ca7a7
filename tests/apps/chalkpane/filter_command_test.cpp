#include <doctest/doctest.h>

#include <nlohmann/json.hpp>

#include "chalkpane/filters/filter_registry.h"
#include "picture_io/picture.h"
#include "tests/cli/terminal.h"
#include "tests/cli/working_folder.h"

// The program itself, run as an operator runs it.

namespace chalkpane::app {
namespace {

using cli::testing::Ended;
using nlohmann::json;
using picture_io::AnyPicture;
using picture_io::Picture;
using picture_io::Picture16;

using Words = std::array<std::uint16_t, 4>;
using Bytes = std::array<std::uint8_t, 4>;

// A folder with a picture of 4 x 3 pixels in bytes, one in words, and a mask whose left half is white.
class WorkingFolder : public cli::testing::WorkingFolder {
public:
    WorkingFolder() : cli::testing::WorkingFolder(CHALKPANE_PROGRAM) {
        Picture bytes(4, 3);
        Picture16 words(4, 3);
        Picture mask(4, 3);
        for (std::int32_t y = 0; y < 3; ++y)
            for (std::int32_t x = 0; x < 4; ++x) {
                bytes.Set(x, y, {100, 50, 0, 255});
                words.Set(x, y, {4000, 0, 65535, 65535});
                const std::uint8_t light = x < 2 ? 255 : 0;
                mask.Set(x, y, {light, light, light, 255});
            }
        picture_io::WritePicture(bytes, Path("bytes.png"));
        picture_io::WritePicture(bytes, Path("bytes.jpg"));
        picture_io::WritePicture(words, Path("words.png"));
        picture_io::WritePicture(mask, Path("mask.png"));
    }

    [[nodiscard]] AnyPicture OpenAny(const std::string& name) const { return picture_io::ReadAnyPicture(Path(name)); }

    // Runs the filter command, which succeeds in silence.
    void Filter(const std::string& arguments) const {
        const Ended ended = Run("filter " + arguments);
        CHECK_EQ(ended.complaint, "");
        CHECK_EQ(ended.output, "");
        REQUIRE_EQ(ended.exitCode, 0);
    }
};

const std::string invert = " --apply 'Invert Color'";

// Bad input ends with exit code 2 and this one line, and no file has appeared.
void CheckRefused(const std::string& arguments, const std::string& line) {
    CAPTURE(arguments);
    const WorkingFolder folder;
    const std::ptrdiff_t entries = folder.Entries();
    const Ended ended = folder.Run("filter " + arguments);
    CHECK_EQ(ended.complaint, "chalkpane: " + line + "\n");
    CHECK_EQ(ended.exitCode, 2);
    CHECK_EQ(ended.output, "");
    CHECK_EQ(folder.Entries(), entries);
}

}  // namespace

TEST_CASE("chalkpane filter keeps the depth of the picture") {
    const WorkingFolder folder;
    folder.Filter("bytes.png out.png" + invert);
    const AnyPicture bytes = folder.OpenAny("out.png");
    REQUIRE(std::holds_alternative<Picture>(bytes));
    CHECK(std::get<Picture>(bytes).At(3, 2) == Bytes{155, 205, 255, 255});

    // The word 4000 is 1000 in 14 bits; 16383 - 1000 = 15383 goes out as 15383 * 4 + 3, its two highest bits.
    folder.Filter("words.png out.png" + invert);
    const AnyPicture words = folder.OpenAny("out.png");
    REQUIRE(std::holds_alternative<Picture16>(words));
    CHECK(std::get<Picture16>(words).At(3, 2) == Words{61535, 65535, 0, 65535});
}

// 100 widens to 6425, and 16383 - 6425 = 9958 goes out as 9958 * 4 + 2; the word 4000 has the high byte 15.
TEST_CASE("chalkpane filter works and writes in the depth asked for") {
    const WorkingFolder folder;
    folder.Filter("bytes.png out.png --depth 14" + invert);
    CHECK_EQ(std::get<Picture16>(folder.OpenAny("out.png")).At(0, 0)[0], 39834);
    folder.Filter("words.png out.png --depth 8" + invert);
    CHECK(std::get<Picture>(folder.OpenAny("out.png")).At(0, 0) == Bytes{240, 255, 0, 255});
}

TEST_CASE("chalkpane filter reads a JPEG and writes one") {
    const WorkingFolder folder;
    folder.Filter("bytes.jpg out.jpeg" + invert);
    const auto pixel = folder.Open("out.jpeg").At(1, 1);
    CHECK_LE(std::abs(pixel[0] - 155), 3);  // two passes through quality 95 on a flat picture
    CHECK_LE(std::abs(pixel[2] - 255), 3);
}

TEST_CASE("chalkpane filter runs filters in the order given, and may write over the picture") {
    const WorkingFolder folder;
    folder.Filter("bytes.png bytes.png --apply 'Black & White' --apply 'Invert Color'");
    // Luma of (100, 50, 0) is (77 * 100 + 151 * 50) / 256 = 59.
    CHECK(folder.Open("bytes.png").At(0, 0) == Bytes{196, 196, 196, 255});
}

TEST_CASE("chalkpane filter counts a region from the top left corner") {
    const WorkingFolder folder;
    folder.Filter("bytes.png out.png --region 1,0,3,1" + invert);
    const Picture picture = folder.Open("out.png");
    for (std::int32_t y = 0; y < 3; ++y)
        for (std::int32_t x = 0; x < 4; ++x) CHECK_EQ(picture.At(x, y)[0], x >= 1 && y <= 1 ? 155 : 100);
}

TEST_CASE("chalkpane filter lets the filters through where the mask is white") {
    const WorkingFolder folder;
    folder.Filter("bytes.png out.png --mask mask.png" + invert);
    CHECK(folder.Open("out.png").At(1, 1) == Bytes{155, 205, 255, 255});
    CHECK(folder.Open("out.png").At(2, 1) == Bytes{100, 50, 0, 255});
}

TEST_CASE("chalkpane filter lets a picture grow, and distort it fast, where that is asked for") {
    const WorkingFolder folder;
    folder.Filter("bytes.png out.png --expand --apply Blur:Softness=2");
    CHECK_EQ(folder.Open("out.png").width, 8);
    CHECK_EQ(folder.Open("out.png").height, 7);
    folder.Filter("bytes.png out.png --fast --apply Marble:Edges=Clamp");
    CHECK_EQ(folder.Open("out.png").width, 4);
}

TEST_CASE("The same command gives the same picture, and another frame another") {
    const WorkingFolder folder;
    const std::string grain = " --apply 'Film Grain:Red Level=1'";
    folder.Filter("bytes.png a.png" + grain);
    folder.Filter("bytes.png b.png" + grain);
    folder.Filter("bytes.png c.png --frame 1" + grain);
    CHECK(folder.Open("a.png") == folder.Open("b.png"));
    CHECK_FALSE(folder.Open("a.png") == folder.Open("c.png"));
}

TEST_CASE("What chalkpane filter cannot do is told in one line, and nothing is written") {
    CheckRefused("bytes.png o.png --apply 'Medain:Radius=3'",
                 "there is no filter \"Medain\"; did you mean \"Median\"?");
    CheckRefused("bytes.png o.png --apply Median:Radus=3",
                 "Median: there is no parameter \"Radus\"; did you mean \"Radius\"?");
    CheckRefused("bytes.png o.png --apply Median:Radius=21", "Median: Radius: 21 lies outside 1 .. 20");
    CheckRefused("bytes.png o.png --apply Median:Radius=x", "Median: Radius: \"x\" is not a whole number");
    CheckRefused("none.png o.png" + invert, "none.png: cannot be read: No such file or directory");
    CheckRefused("bytes.png no/o.png" + invert, "no/o.png: cannot be written: there is no folder no");
    CheckRefused("bytes.png o.txt" + invert,
                 "o.txt: pictures end in .png, .jpg, .jpeg, .webp, .tif, .tiff, .bmp, .ppm, .pnm, .pgm, .pam, .gif, "
                 ".avif, .heic or .heif");
    CheckRefused("words.png o.jpg" + invert,
                 "o.jpg: a JPEG has 8 bits a channel; 16 bits need a name in .png, .tif, .tiff, .ppm, .pnm or .pam");
    CheckRefused("bytes.png o.png --region 1,1,2" + invert,
                 "--region: \"1,1,2\" is not 4 numbers with commas between them");
    CheckRefused("bytes.png o.png --region 3,0,2,1" + invert,
                 "--region: \"3,0,2,1\" ends before it begins; it goes x0,y0,x1,y1");
    CheckRefused("bytes.png o.png --region 0,0,4,1" + invert,
                 "--region: \"0,0,4,1\" does not lie within the picture of 4 x 3 pixels");
    CheckRefused("bytes.png o.png --depth 10" + invert,
                 "command line: --depth: 10 not in {8,14} (chalkpane --help tells more)");
    CheckRefused("bytes.png o.png", "there is no filter to run; name one with --apply or give a --preset");
}

TEST_CASE("A mask of another size, or none at all, is refused") {
    const WorkingFolder folder;
    picture_io::WritePicture(Picture(5, 3), folder.Path("wide.png"));
    CHECK_EQ(folder.Run("filter bytes.png o.png --mask wide.png" + invert).complaint,
             "chalkpane: wide.png: is 5 x 3 pixels, but the picture is 4 x 3\n");
    folder.Write("text.png", "no picture");
    CHECK_EQ(folder.Run("filter bytes.png o.png --mask text.png" + invert).complaint,
             "chalkpane: text.png: is no picture that can be read here (docs/pictures.md lists them)\n");
    CHECK_FALSE(folder.Has("o.png"));
}

TEST_CASE("An output that fails leaves what stood there") {
    const WorkingFolder folder;
    folder.Filter("bytes.png out.png" + invert);
    const Picture before = folder.Open("out.png");
    CHECK_EQ(folder.Run("filter bytes.png out.png --apply Median:Radius=0").exitCode, 2);
    CHECK(folder.Open("out.png") == before);
}

TEST_CASE("chalkpane filter shows its progress on a terminal, and wipes it" *
          doctest::skip(!cli::testing::TerminalIsPossible())) {
    const WorkingFolder folder;
    const std::string shown =
        cli::testing::RunOnTerminal(folder, CHALKPANE_PROGRAM, "filter bytes.png out.png" + invert + invert);
    CAPTURE(shown);
    const std::string height = std::to_string(folder.Open("bytes.png").height);
    CHECK_NE(shown.find("] row 0 of " + height), std::string::npos);
    CHECK_NE(shown.find("[##############################] row " + height + " of " + height), std::string::npos);
    CHECK(shown.ends_with("\r\033[K"));
}

TEST_CASE("The help of chalkpane filter tells the grammar") {
    const Ended help = WorkingFolder().Run("filter --help");
    CHECK_EQ(help.exitCode, 0);
    CHECK_NE(help.output.find("NAME[:PARAMETER=VALUE]..."), std::string::npos);
    CHECK_NE(help.output.find("'Luma Graph:LUT Graph=0,0;0.3,0.6;1,1'"), std::string::npos);
}

TEST_CASE("chalkpane filters lists what the registry holds, in its order") {
    const Ended ended = WorkingFolder().Run("filters --json");
    CHECK_EQ(ended.exitCode, 0);
    const json listed = json::parse(ended.output)["filters"];
    const auto& filters = FilterRegistry::Instance().Filters();
    REQUIRE_EQ(listed.size(), filters.size());
    for (std::size_t i = 0; i < filters.size(); ++i) {
        CHECK_EQ(listed[i]["label"], filters[i]->Label());
        CHECK_EQ(listed[i]["name"], filters[i]->Name());
        CHECK_EQ(listed[i]["category"], filters[i]->Category());
    }
    CHECK_EQ(listed[0], json::parse(R"({"label": "Blur", "name": "Softener", "category": "Blurs", "movesPixels": true,
        "bits": [8, 14], "parameters": [{"label": "Softness", "key": "Filter Softness", "type": "number",
        "default": 0.0, "minimum": 0, "maximum": 20}]})"));
}

TEST_CASE("chalkpane filters tells every kind of parameter") {
    const json listed = json::parse(WorkingFolder().Run("filters --json").output)["filters"];
    const auto parameter = [&listed](const std::string& filter, const std::string& label) {
        for (const json& each : listed)
            for (const json& one : each["parameters"])
                if (each["label"] == filter && one["label"] == label) return one;
        return json();
    };
    CHECK_EQ(parameter("Oil", "Use Intensity"),
             json::parse(R"({"label": "Use Intensity", "key": "Use Intensity", "type": "boolean", "default": true})"));
    CHECK_EQ(parameter("Add/Subtract", "Source Color"), json::parse(R"({"label": "Source Color",
        "key": "Source Colour", "type": "color", "default": "#ffffff"})"));
    CHECK_EQ(parameter("Turbulence", "Edges"), json::parse(R"({"label": "Edges", "key": "Edges", "type": "choice",
        "default": "Transparent", "choices": ["Transparent", "Reflect", "Wrap"]})"));
    CHECK_EQ(parameter("Luma Graph", "LUT Graph"), json::parse(R"({"label": "LUT Graph", "key": "LUT Graph",
        "type": "graph", "default": "0,0;1,1"})"));
    CHECK_EQ(parameter("Emboss", "Light Direction"), json::parse(R"({"label": "Light Direction",
        "key": "Light Direction", "type": "angle", "default": 90.0, "minimum": 0, "maximum": 360})"));
}

TEST_CASE("chalkpane filters shows a table under each menu") {
    const Ended ended = WorkingFolder().Run("filters");
    CHECK_EQ(ended.exitCode, 0);
    CHECK(ended.output.starts_with("Blurs\n  Blur\n     Softness  number  0  0 .. 20  also \"Filter Softness\"\n"));
    CHECK_NE(ended.output.find("\nFilters\n  Edge Detect\n     Brightness  number  5  0 .. 10\n"), std::string::npos);
}

}  // namespace chalkpane::app
