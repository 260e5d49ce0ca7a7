#include <doctest/doctest.h>

#include <limits>
#include <nlohmann/json.hpp>

#include "kel/session/session_lines.h"
#include "kel/workspace/workspace.h"
#include "telestrator/journal/journal_file.h"
#include "tests/cli/temporary_folder.h"
#include "tests/kel/pixels.h"

namespace kel {
namespace {

using Pressures = std::vector<double>;

// A stroke with such a pen, one sample a field but for the last move, which is a step between two, and the wait until
// it has become what it is.
void DrawWithPen(Workspace& workspace, const Pressures& pressures) {
    std::int32_t x = 40;
    for (std::size_t i = 0; i < pressures.size(); ++i, x += 30) {
        const bool isLast = i + 1 == pressures.size();
        workspace.Point(i == 0   ? PointerKind::Press
                        : isLast ? PointerKind::Release
                                 : PointerKind::Move,
                        x, 60, pressures[i]);
        if (i + 2 == pressures.size())
            workspace.RunStep();
        else
            workspace.RunFields(1);
    }
    workspace.RunFields(80);
}

Pressures OfHand(const chalkpane::InkStroke& stroke) {
    Pressures pressures;
    for (const chalkpane::HandSample& sample : stroke.hand) pressures.push_back(sample.pressure);
    return pressures;
}

Pressures OfTheStroke(Workspace& workspace) {
    workspace.FollowInk();
    const auto strokes = workspace.Ink()->Strokes();
    REQUIRE_EQ(strokes.size(), 1U);
    return OfHand(*strokes.front());
}

picture_io::Picture InkOf(Workspace& workspace) { return workspace.TheHost().ReadCanvas(workspace.Chosen()->id); }

}  // namespace

TEST_CASE("How hard a pen is pressed is in the recording and the journal, and changes no pixel") {
    const cli::testing::TemporaryFolder folder;
    picture_io::WritePicture(testing::Plain(320, 240, {90, 90, 90, 255}), folder / "grey.png");
    WorkspaceOptions options;
    options.module = CHALKPANE_MODULE;
    options.saves = folder.Path();
    picture_io::Picture plain;
    {
        Workspace workspace(folder / "grey.png", options);
        workspace.RunFields(2);
        DrawWithPen(workspace, {1, 1, 1, 1, 1});
        plain = InkOf(workspace);
    }
    options.recording = folder / "run.json";
    const double nothing = std::numeric_limits<double>::quiet_NaN();
    const Pressures kept{0.25, 0, 1, 0.5, 1};
    {
        Workspace workspace(folder / "grey.png", options);
        workspace.RunFields(2);
        DrawWithPen(workspace, {0.25, -7, nothing, 0.5, 1e9});
        CHECK_EQ(InkOf(workspace) == plain, true);
        CHECK_EQ(OfTheStroke(workspace) == kept, true);
    }
    Pressures recorded;
    const auto json = nlohmann::json::parse(WholeSessionText(cli::testing::ReadText(options.recording)));
    for (const auto& event : json["events"]) recorded.push_back(event.value("pressure", 1.0));
    CHECK_EQ(recorded == kept, true);
    CHECK_EQ(json["events"][2].contains("pressure"), false);  // full goes without saying
    const auto journal = chalkpane::ReadJournalFile(folder / "run.journal");
    REQUIRE_EQ(journal.error, "");
    REQUIRE_EQ(journal.records.size(), 1U);
    CHECK_EQ(OfHand(*journal.records.front().strokes.front()) == kept, true);

    options.recording.clear();
    Workspace again(folder / "run.json", options);
    while (again.IsPlayingSession()) again.PlaySession(std::chrono::milliseconds(50));
    CHECK_EQ(InkOf(again) == plain, true);
    CHECK_EQ(OfTheStroke(again) == kept, true);
}

}  // namespace kel
