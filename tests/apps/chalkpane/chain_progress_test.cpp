#include "apps/chalkpane/filtering/chain_progress.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "apps/chalkpane/filtering/file_filtering.h"
#include "apps/chalkpane/filtering/filter_run.h"
#include "apps/chalkpane/filtering/filter_texts.h"
#include "picture_io/picture.h"
#include "tests/apps/chalkpane/pictures.h"
#include "tests/cli/working_folder.h"

namespace chalkpane::app {
namespace {

using Steps = std::vector<std::int64_t>;

constexpr std::int32_t rows = 900;

// What is told of a chain over a picture of 600 x 900 pixels.
Steps StepsOf(const std::vector<std::string>& texts) {
    std::vector<std::unique_ptr<Filter>> filters;
    for (const std::string& text : texts) filters.push_back(FilterFromText(text));
    Steps steps;
    ChainProgress progress(filters, rows, [&steps](std::int64_t done) { steps.push_back(done); });
    (void)RunFilters(filters, testing::Varied(600, rows, Depth::Eight), {},
                     [&progress](std::int32_t count) { progress.EndFilter(count); });
    return steps;
}

bool Rises(const Steps& steps) {
    for (std::size_t i = 1; i < steps.size(); ++i)
        if (steps[i] <= steps[i - 1]) return false;
    return true;
}

}  // namespace

TEST_CASE("Every filter that has work to do over a whole picture tells at least five steps of it, up to all rows") {
    for (const char* const text :
         {"Blur:Softness=4", "Super Soften:Softness=20", "Invert Color", "AutoEqualize",
          "Colour Jitter:Hue Rotation=50", "Marble", "Random Jitter:Max Angle=9", "Turbulence:Amount=3",
          "Add Noise:Level=0.5", "Add Noise:Level=0.5:Density %=50", "Emboss", "Halftone", "Oil:Radius=3",
          "Pixellate:Size=9", "Stained Glass", "Edge Detect", "Erode/Dilate:Radius=3", "Median:Radius=2",
          "Film Grain:Red Level=1:Red Size=5"}) {
        CAPTURE(text);
        const Steps steps = StepsOf({text});
        REQUIRE_GE(steps.size(), 5);
        CHECK(Rises(steps));
        CHECK_LE(steps.front(), rows / 2);
        CHECK_GE(steps[steps.size() - 2], rows / 2);
        CHECK_EQ(steps.back(), rows);
    }
}

TEST_CASE("In a chain each filter counts as many rows as the picture has") {
    const Steps steps = StepsOf({"Invert Color", "Super Soften:Softness=20", "Black & White"});
    CHECK(Rises(steps));
    CHECK_NE(std::ranges::find(steps, rows), steps.end());
    CHECK_NE(std::ranges::find(steps, 2 * rows), steps.end());
    CHECK_EQ(steps.back(), 3 * rows);
}

// Reading, the filter and writing count 900 rows each.
TEST_CASE("A file that goes through a filter as a whole is told in rows from its first to its last") {
    const cli::testing::WorkingFolder folder(CHALKPANE_PROGRAM);
    picture_io::WritePicture(picture_io::Picture(600, rows), folder.Path("a.png"));
    FilterOptions options;
    options.apply = {"Super Soften:Softness=20"};
    Steps steps;
    std::int64_t all = 0;
    (void)FilteredFile(folder.Path("a.png"), "b.png", options, [&](std::int64_t done, std::int64_t of) {
        if (steps.empty() || done != steps.back()) steps.push_back(done);
        all = of;
    });
    CHECK_EQ(all, 3 * rows);
    CHECK(Rises(steps));
    CHECK_EQ(steps.front(), 0);
    CHECK_EQ(steps.back(), all);
    CHECK_GE(std::ranges::count_if(steps, [](std::int64_t step) { return step > rows && step < 2 * rows; }), 5);
}

}  // namespace chalkpane::app
