#include <doctest/doctest.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <vector>

#include "cli/file_bytes.h"
#include "picture_io/picture_file.h"
#include "picture_io/picture_format.h"
#include "tests/address_checks.h"
#include "tests/cli/working_folder.h"

// What is counted before a run is held to what the run then takes.

namespace chalkpane::app {
namespace {

constexpr double mebibyte = 1 << 20;

class MeasuredFolder : public cli::testing::WorkingFolder {
public:
    MeasuredFolder() : cli::testing::WorkingFolder(CHALKPANE_PROGRAM) {
        picture_io::Picture picture(3000, 2000);
        std::uint32_t random = 1;
        for (std::size_t i = 0; i < picture.rgba.size(); ++i) {
            random = random * 1664525U + 1013904223U;
            picture.rgba[i] = i % 4 == 3 ? 255 : static_cast<std::uint8_t>(random >> 24U);
        }
        for (const char* const name : {"a.png", "a.jpg", "a.bmp"}) picture_io::WritePicture(picture, Path(name));
        picture_io::WriteOptions onItsSide;
        onItsSide.info.exif = {'M', 'M', 0, 42, 0, 0, 0, 8, 0, 1, 1, 0x12, 0, 3, 0, 0, 0, 1, 0, 6, 0, 0, 0, 0, 0, 0};
        cli::WriteFileWhole(
            Path("side.png"),
            picture_io::EncodePictureFile(picture, picture_io::RowOf(picture_io::PictureFormat::Png), onItsSide));
        picture_io::WritePicture(picture_io::Picture(1, 1), Path("dot.png"));
        m_program = Peak("dot.png dot.jpg --apply 'Invert Color'");
    }

    // In MiB, as the refusal says it.
    [[nodiscard]] double Counted(const std::string& arguments) const {
        const std::string told = Run("filter " + arguments + " --memory 1M").complaint;
        const std::size_t at = told.find(": takes ");
        REQUIRE_MESSAGE(at != std::string::npos, told);
        CHECK_NE(told.find(" MiB of it for "), std::string::npos);
        return std::stod(told.substr(at + 8));
    }
    // In MiB, above what the program takes for a picture of one pixel.
    [[nodiscard]] double Measured(const std::string& arguments) const { return Peak(arguments) - m_program; }

private:
    [[nodiscard]] double Peak(const std::string& arguments) const {
        const std::string command =
            "cd '" + Path("") + "' && exec '" CHALKPANE_PROGRAM "' filter " + arguments + " 2>/dev/null";
        malloc_trim(0);  // what this process has counts for the child until it becomes the program
        const pid_t child = fork();
        REQUIRE_GE(child, 0);
        if (child == 0) {
            execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
            _exit(127);
        }
        int status = -1;
        rusage usage{};
        REQUIRE_EQ(wait4(child, &status, 0, &usage), child);
        CHECK_EQ(status, 0);
        return static_cast<double>(usage.ru_maxrss) * 1024 / mebibyte;
    }

    double m_program = 0;
};

}  // namespace

// Noise, which is the hardest to pack: of 22.9 MiB.
TEST_CASE("A run of filters takes no more memory than is counted, whichever way it goes" *
          doctest::skip(tests::hasAddressChecks)) {
    const MeasuredFolder folder;
    for (const std::string arguments :
         {"a.jpg out.jpg --apply 'Invert Color'", "side.png out.jpg --apply 'Invert Color'",
          "a.jpg out.png --apply Median:Radius=5", "a.png out.png --apply Blur:Softness=4",
          "a.bmp out.bmp --apply 'Invert Color'", "a.jpg out.tif --apply 'Invert Color'",
          "a.jpg out.jpg --apply 'Super Soften:Softness=20'",
          "a.jpg out.png --expand --apply 'Super Soften:Softness=50'",
          "a.png out.png --mask a.png --apply 'Invert Color'",
          "a.jpg out.png --region 0,0,2900,1900 --apply 'Erode/Dilate:Radius=3'",
          "a.jpg out.png --apply 'Random Jitter:Max Angle=20' --expand",
          "a.jpg out.png --apply 'Random Jitter:Max Angle=5' --expand --region 0,0,2900,1900",
          "a.jpg out.png --apply 'Random Jitter:Max Angle=5' --expand --region 10,10,20,20",
          "a.jpg out.png --depth 14 --apply Blur:Softness=3 --apply 'Super Soften:Softness=20' --apply Solarize"}) {
        CAPTURE(arguments);
        const double counted = folder.Counted(arguments);
        const double measured = folder.Measured(arguments);
        CAPTURE(measured);
        CHECK_GE(counted, measured);
    }
}

// Four copies of its pixels would be 91 MiB.
TEST_CASE("A picture that fits because it goes by bands is not refused") {
    const MeasuredFolder folder;
    CHECK_EQ(folder.Run("filter a.jpg out.jpg --memory 40M --apply 'Invert Color'").complaint, "");
    CHECK(folder.Has("out.jpg"));
}

}  // namespace chalkpane::app
