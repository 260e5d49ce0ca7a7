#include <doctest/doctest.h>

#include <vector>

#include "kel/workspace/field_pacer.h"
#include "kel/workspace/workspace.h"
#include "tests/cli/temporary_folder.h"
#include "tests/kel/video/counted_video.h"

namespace kel {
namespace {

using std::chrono::milliseconds;
using FrameNumbers = std::vector<std::int64_t>;

// A video of so many frames a second, and the numbers of the frames that are newly seen when its fields are run at
// these times, in milliseconds from the first field on, as the window runs them.
FrameNumbers FramesSeen(double framesPerSecond, const std::vector<int>& times) {
    const cli::testing::TemporaryFolder folder;
    testing::WriteCountedVideo(folder / "film.mkv", 30, 64, 48, framesPerSecond);
    WorkspaceOptions options;
    options.module = CHALKPANE_MODULE;
    options.saves = folder.Path();
    Workspace workspace(folder / "film.mkv", options);
    const FieldPacer::Clock::time_point first{std::chrono::hours(1)};
    FieldPacer pacer(workspace.FieldsPerSecond(), first);
    FrameNumbers seen;
    for (const int time : times) {
        const int due = pacer.Due(first + milliseconds(time));
        if (due == 0) continue;
        workspace.RunFields(due);
        if (workspace.TheHost().TakeChangedArea().IsEmpty()) continue;
        seen.push_back(testing::NumberOf(workspace.TheHost().ReadFrame()));
    }
    return seen;
}

}  // namespace

// A field is due every 20 ms, and woken up for up to 17 ms later.
TEST_CASE("Each frame of a film is seen once, in order, as long as its fields are kept") {
    const std::vector<int> times{0, 37, 40, 63, 64, 97, 100, 120, 157, 160, 181};
    CHECK_EQ(FramesSeen(50, times) == FrameNumbers{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, true);
    CHECK_EQ(FramesSeen(25, times) == FrameNumbers{0, 1, 2, 3, 4}, true);
}

// At 75 ms the fields of 20, 40 and 60 ms are due, and at 175 ms those of 120, 140 and 160.
TEST_CASE("A film passes over the frames of fields that come too late, and is in time again with the next") {
    const std::vector<int> times{0, 75, 80, 100, 175, 180};
    CHECK_EQ(FramesSeen(50, times) == FrameNumbers{0, 3, 4, 5, 8, 9}, true);
    CHECK_EQ(FramesSeen(25, times) == FrameNumbers{0, 1, 2, 4}, true);
}

}  // namespace kel
