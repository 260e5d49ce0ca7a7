#include "kel/outputs/output_format.h"

#include <doctest/doctest.h>

#include <set>
#include <string>

#include "picture_io/picture_format.h"
#include "tests/cli/temporary_folder.h"
#include "tests/kel/kel_folder.h"

namespace kel {
namespace {

bool Contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

}  // namespace

TEST_CASE("An ending stands for one output, in either case of letters") {
    std::set<std::string> endings;
    for (const OutputFormat& format : OutputFormats()) {
        CAPTURE(format.ending);
        CHECK(endings.insert(std::string(format.ending)).second);
        if (IsFileOutput(format)) CHECK_EQ(FormatOfOutput("folder.x/name" + std::string(format.ending)), &format);
    }
    CHECK_EQ(FormatOfOutput("A.PNG"), FormatOfOutput("a.png"));
    CHECK_EQ(FormatOfOutput("a.txt"), nullptr);
    CHECK_EQ(FormatOfOutput("png"), nullptr);
    CHECK_EQ(FormatOfOutput(""), nullptr);
}

TEST_CASE("Every picture with colours that is written is an output, and one without is none") {
    for (const picture_io::FormatRow& picture : picture_io::PictureFormats())
        for (const std::string_view ending : picture.endings) {
            CAPTURE(ending);
            const OutputFormat* const format = FormatOfOutput("a" + std::string(ending));
            REQUIRE_EQ(format != nullptr, picture.hasColour);
            if (format == nullptr) continue;
            CHECK_EQ(format->medium, OutputMedium::Picture);
            CHECK_EQ(format->name, picture.name);
            CHECK_EQ(format->hasAlpha, picture.hasAlpha);
        }
}

TEST_CASE("Endings are listed as a sentence has them") {
    CHECK_EQ(OutputEndings(IsAlphaOutput, "or"), ".png, .webp, .tif, .tiff, .pam, .avif, .heic, .heif, .mov or .mkv");
    CHECK_EQ(OutputEndings(IsAlphaVideoOutput, "and"), ".mov and .mkv");
    CHECK_EQ(OutputEndings(IsAlphaPictureOutput, "or"), ".png, .webp, .tif, .tiff, .pam, .avif, .heic or .heif");
    CHECK_EQ(OutputEndings(IsPictureOutput, ""),
             ".png, .jpg, .jpeg, .webp, .tif, .tiff, .bmp, .ppm, .pnm, .pam, .gif, .avif, .heic, .heif");
    CHECK_EQ(OutputEndings(IsVideoOutput, "or"), ".mov, .mkv, .mp4 or .webm");
    CHECK_EQ(OutputEndings(IsStreamOutput, "or"), "srt://, udp:// or tcp://");
    CHECK_EQ(OutputEndings(IsAlphaStreamOutput, "or"), "tcp://");
}

TEST_CASE("The page about outputs and the help know every ending and its codec") {
    const std::string page = cli::testing::ReadText(KEL_SOURCE_FOLDER "/docs/output.md");
    const testing::KelFolder folder;
    const std::string help = folder.Run("play --help").output;
    for (const OutputFormat& format : OutputFormats()) {
        CAPTURE(format.ending);
        CHECK(Contains(page, "`" + std::string(format.ending) + "`"));
        CHECK(Contains(page, std::string(format.name)));
        CHECK(Contains(help, std::string(format.ending)));
    }
}

}  // namespace kel
