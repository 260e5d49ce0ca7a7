#include <doctest/doctest.h>

#include <cstdlib>
#include <string>

#include "tests/cli/working_folder.h"

// The program with a C allocator that fails at one place, or from there on (tests/failing_allocations).

#ifdef CHALKPANE_FAILING_ALLOCATIONS

namespace chalkpane::app {
namespace {

using cli::testing::Ended;
using cli::testing::ReadText;

const std::string noMemory = "chalkpane: there is not enough memory\n";

class StarvedFolder : public cli::testing::WorkingFolder {
public:
    StarvedFolder() : cli::testing::WorkingFolder(CHALKPANE_PROGRAM) {
        Write("s.json", R"({"canvas": {"width": 60, "height": 40}, "strokes": [
            {"brush": {"color": "#ff8000", "Size": 12, "Profile Name": "Texture", "filters": [{"filter": "Median"}]},
             "points": [[5, 5], [30, 30], [55, 8]]},
            {"brush": {"color": "#0080ff", "Size": 9}, "points": [[5, 35], [30, 10], [55, 30]]}]})");
        picture_io::Picture picture(40, 30);
        for (std::size_t i = 0; i < picture.rgba.size(); ++i) picture.rgba[i] = static_cast<std::uint8_t>(i * 37 | 3);
        picture_io::WritePicture(picture, Path("in.png"));
    }

    [[nodiscard]] Ended Starve(const std::string& arguments, const std::string& environment) const {
        return Run(arguments, CHALKPANE_PROGRAM, environment + " LD_PRELOAD='" CHALKPANE_FAILING_ALLOCATIONS "'");
    }

    // Samples the places at which an allocation fails. Each run either comes to the same picture or says so in one
    // line, with code 3 and without a file.
    void CheckFailures(const std::string& arguments, bool lasting, int samples) const {
        REQUIRE_EQ(Starve(arguments + " whole.png", "COUNT_FILE=count").exitCode, 0);
        const std::string whole = ReadText(Path("whole.png"));
        const long count = std::atol(ReadText(Path("count")).c_str());
        REQUIRE_GT(count, samples);
        const std::ptrdiff_t entries = Entries();
        int refused = 0;
        for (int sample = 0; sample < samples; ++sample) {
            const long place = count * sample / samples;
            CAPTURE(place);
            const Ended ended =
                Starve(arguments + " out.png", "FAIL_AT=" + std::to_string(place) + (lasting ? " FAIL_LASTING=1" : ""));
            if (ended.exitCode == 0) {
                CHECK(ReadText(Path("out.png")) == whole);
                std::filesystem::remove(Path("out.png"));
            } else {
                CHECK_EQ(ended.exitCode, 3);
                CHECK_EQ(ended.complaint, noMemory);
                ++refused;
            }
            CHECK_EQ(Entries(), entries);
        }
        CHECK_GT(refused, samples / 4);
    }
};

}  // namespace

TEST_CASE("paint says when a single allocation fails, and never leaves anything out of a picture") {
    StarvedFolder().CheckFailures("paint s.json", false, 60);
}

TEST_CASE("filter says when a single allocation fails") {
    StarvedFolder().CheckFailures("filter in.png --apply Median --apply Marble --apply 'Luma Graph:LUT Graph=0,1;1,0'",
                                  false, 60);
}

TEST_CASE("lasting lack of memory is one line and code 3, wherever it begins") {
    const StarvedFolder folder;
    folder.CheckFailures("paint s.json", true, 30);
    folder.CheckFailures("filter in.png --apply Blur", true, 30);
}

}  // namespace chalkpane::app

#endif
