#include "kel/workspace/video_keys.h"

#include <doctest/doctest.h>

namespace kel {
namespace {

// A video of 1000 frames at 25 a second, each in two fields.
VideoClock Clock() { return {1000, 0.5}; }

VideoChange After(WorkspaceAction action, const VideoClock& clock, std::int64_t field) {
    const auto change = ChangeFor(action, {clock, 25, field});
    REQUIRE(change);
    return *change;
}

}  // namespace

TEST_CASE("A jump is of five seconds, and ends at the video's ends") {
    const VideoClock clock = Clock();
    CHECK_EQ(After(WorkspaceAction::Jump, clock, 200).frame, 100 + 125);
    CHECK_EQ(After(WorkspaceAction::JumpBack, clock, 400).frame, 200 - 125);
    CHECK_EQ(After(WorkspaceAction::JumpBack, clock, 20).frame, 0);
    CHECK_EQ(After(WorkspaceAction::Jump, clock, 1990).frame, 999);
    CHECK_FALSE(After(WorkspaceAction::Jump, clock, 200).play);  // it goes on as before
}

TEST_CASE("Speeds go by halves and doubles, from an eighth to four times") {
    VideoClock clock = Clock();
    for (const double speed : {0.5, 0.25, 0.125, 0.125}) {
        clock.Change(After(WorkspaceAction::Slower, clock, 0), 0);
        CHECK_EQ(clock.Speed(), speed);
    }
    for (const double speed : {0.25, 0.5, 1.0, 2.0, 4.0, 4.0}) {
        clock.Change(After(WorkspaceAction::Faster, clock, 0), 0);
        CHECK_EQ(clock.Speed(), speed);
    }
}

TEST_CASE("In and out points are where the video stands, play begins again at the in point, and all of it comes back") {
    VideoClock clock = Clock();
    clock.Change(After(WorkspaceAction::MarkIn, clock, 20), 20);
    clock.Change(After(WorkspaceAction::MarkOut, clock, 60), 60);
    CHECK_EQ(clock.In(), 10);
    CHECK_EQ(clock.Out(), 30);
    CHECK_FALSE(clock.IsRunning(60));
    CHECK_EQ(After(WorkspaceAction::Pause, clock, 60).frame, 10);
    CHECK_EQ(After(WorkspaceAction::Pause, clock, 60).play, true);
    CHECK_EQ(After(WorkspaceAction::Start, clock, 60).frame, 10);
    clock.Change(After(WorkspaceAction::NoMarks, clock, 60), 60);
    CHECK_EQ(clock.In(), 0);
    CHECK_EQ(clock.Out(), 999);
}

TEST_CASE("What is nothing to a video changes none") {
    CHECK_FALSE(ChangeFor(WorkspaceAction::SavePicture, {Clock(), 25, 0}));
}

}  // namespace kel
