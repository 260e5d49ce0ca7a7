#include "kel/control/control_state.h"

#include <doctest/doctest.h>

#include "tests/kel/control/bare_target.h"

namespace kel {
namespace {

using nlohmann::json;
using testing::BareTarget;

std::vector<json> Parsed(const std::vector<std::string>& lines) {
    std::vector<json> events;
    events.reserve(lines.size());
    for (const std::string& line : lines) events.push_back(json::parse(line));
    return events;
}

bool Has(const std::vector<json>& events, const std::string& kind) {
    return std::ranges::any_of(events, [&](const json& event) { return event["event"] == kind; });
}

}  // namespace

TEST_CASE("All of the state is told first, and then each change once, whoever made it") {
    BareTarget target;
    ControlState state;
    Workspace& workspace = *target.workspace;
    const std::vector<json> first = Parsed(state.TakeEvents(workspace));
    CHECK(Has(first, "opened"));
    CHECK(Has(first, "container"));
    CHECK(Has(first, "fade"));
    const auto parameters =
        std::ranges::count_if(first, [](const json& event) { return event["event"] == "parameter"; });
    CHECK_EQ(parameters, static_cast<std::ptrdiff_t>(workspace.Chosen()->registration->parameters.size()));
    CHECK(state.TakeEvents(workspace).empty());

    workspace.Do({ModuleKey::Kind::Step,
                  {},
                  {{static_cast<std::size_t>(workspace.Chosen()->registration->FindParameter("BrushWidth") -
                                             workspace.Chosen()->registration->parameters.data()),
                    {}}},
                  1});
    CHECK(state.TakeEvents(workspace).empty());  // not before the field
    const int width = target.Value("BrushWidth");
    workspace.RunFields(1);
    const std::vector<json> changed = Parsed(state.TakeEvents(workspace));
    REQUIRE_EQ(changed.size(), 1);
    CHECK_EQ(
        changed[0],
        json{
            {"event", "parameter"}, {"container", workspace.Chosen()->name}, {"name", "BrushWidth"}, {"value", width}});
}

TEST_CASE("Strokes are told by their number") {
    BareTarget target;
    ControlState state;
    Workspace& workspace = *target.workspace;
    (void)target.Run("set RecoShapes false");
    workspace.RunFields(1);
    workspace.FollowInk();
    (void)state.TakeEvents(workspace);
    workspace.Point(PointerKind::Press, 40, 60);
    workspace.RunFields(1);
    workspace.Point(PointerKind::Move, 240, 60);
    workspace.RunFields(1);
    workspace.Point(PointerKind::Release, 240, 60);
    std::vector<json> events;
    for (int i = 0; i < 10; ++i) {
        workspace.RunFields(1);
        workspace.FollowInk();
        for (json& event : Parsed(state.TakeEvents(workspace)))
            if (event["event"] == "ink") events.push_back(event);
    }
    REQUIRE_EQ(events.size(), 1);
    CHECK_EQ(events[0]["strokes"], 1);
}

TEST_CASE("Another file is told as opened, with all of its state") {
    BareTarget target;
    BareTarget other;
    ControlState state;
    (void)state.TakeEvents(*target.workspace);
    CHECK(Has(Parsed(state.TakeEvents(*other.workspace)), "opened"));
}

}  // namespace kel
