#include "kel/control/control_command.h"

#include <doctest/doctest.h>

#include "kel/control/control_words.h"
#include "tests/cli/thrown.h"

namespace kel {
namespace {

using cli::testing::Thrown;

std::string Refused(const std::string& line) {
    return Thrown([&] { (void)ParseControlCommand(line); });
}

template <typename Command>
Command Read(const std::string& line) {
    return std::get<Command>(ParseControlCommand(line));
}

}  // namespace

TEST_CASE("A line's words are parted by blanks, and quotes keep blanks together") {
    CHECK_EQ(SplitControlWords("  set\tA  1 "), std::vector<std::string>{"set", "A", "1"});
    CHECK_EQ(SplitControlWords("set A \"two words\""), std::vector<std::string>{"set", "A", "two words"});
    CHECK_EQ(SplitControlWords(R"("a \"b\" \\ c" "")"), std::vector<std::string>{"a \"b\" \\ c", ""});
    CHECK_EQ(SplitControlWords("undo\r"), std::vector<std::string>{"undo"});
    CHECK(SplitControlWords(" ").empty());
}

TEST_CASE("Quotes that do not end, quotes inside words, control characters and long lines are refused") {
    CHECK_EQ(Refused("set A \"b"), "the quotes do not end");
    CHECK_EQ(Refused("set A b\"c\""), "a quote stands inside a word");
    CHECK_EQ(Refused("set A \"b\"c"), "a blank is missing behind the quotes");
    CHECK_EQ(Refused(R"(set A "b\n")"), "a backslash between quotes stands before a quote or a backslash");
    CHECK_EQ(Refused("undo\x01"), "the command holds control characters");
    CHECK_EQ(Refused(""), "the command is empty");
    CHECK_EQ(Refused(std::string(65537, 'a')), "the command is longer than 65536 bytes");
}

TEST_CASE("Every action of the keys is a command by its name") {
    for (std::size_t i = 0; i < workspaceActionNames.size(); ++i) {
        INFO(workspaceActionNames[i]);
        CHECK(Read<WorkspaceAction>(std::string(workspaceActionNames[i])) == static_cast<WorkspaceAction>(i));
    }
    CHECK(Read<WorkspaceAction>("recall   in place  3") == OfSlot(WorkspaceAction::RecallInPlace, 3));
}

TEST_CASE("Commands have the words of sessions") {
    CHECK_EQ(Read<SetCommand>("set BrushColor #ff0000 BrushWidth 8").values,
             NamedTexts{{"BrushColor", "#ff0000"}, {"BrushWidth", "8"}});
    CHECK_EQ(Read<ButtonCommand>("button Undo").name, "Undo");
    CHECK_EQ(Read<ButtonCommand>("press Undo").name, "Undo");
    const VideoChange change = Read<VideoCommand>("film frame 120 play false loop true speed 0.5 in 3 out 90").change;
    CHECK_EQ(change.frame, 120);
    CHECK_EQ(change.play, false);
    CHECK_EQ(change.loop, true);
    CHECK_EQ(change.speed, 0.5);
    CHECK_EQ(change.in, 3);
    CHECK_EQ(change.out, 90);
    CHECK_EQ(Read<VideoCommand>("seek 7").change.frame, 7);
    CHECK_EQ(Read<VideoCommand>("play").change.play, true);
    CHECK_EQ(Read<VideoCommand>("speed 2").change.speed, 2);
    CHECK_EQ(Read<StrokeCommand>("undo 3").number, 3);
    const auto move = Read<StrokeCommand>("moveStroke 3 by 20 -5");
    CHECK(move.kind == InkEditKind::Move);
    CHECK_EQ(move.number, 3);
    CHECK_EQ(move.right, 20);
    CHECK_EQ(move.down, -5);
    CHECK_EQ(Read<StrokeCommand>("recolourStroke 2 BrushColor #00ff00").values, NamedTexts{{"BrushColor", "#00ff00"}});
    CHECK_EQ(Read<FadeCommand>("fade after 3 over 25").over, 25);
    CHECK_EQ(Read<FadeCommand>("fade after 3").after, 3.0);
    CHECK_EQ(Read<FadeCommand>("fade false").after.has_value(), false);
}

TEST_CASE("A step with a name is a parameter's, without one the film's") {
    CHECK(Read<WorkspaceAction>("step") == WorkspaceAction::Step);
    CHECK(Read<WorkspaceAction>("step back") == WorkspaceAction::StepBack);
    CHECK_EQ(Read<StepCommand>("step BrushWidth").by, 1);
    CHECK_EQ(Read<StepCommand>("step BrushWidth -2.5").by, -2.5);
}

TEST_CASE("What is no command is refused with the nearest one") {
    CHECK_EQ(Refused("sett A 1"), "there is no command \"sett\"; did you mean \"set\"?");
    CHECK_EQ(Refused("pauze"), "there is no command \"pauze\"; did you mean \"pause\"?");
    CHECK_EQ(Refused("keep 10"), "there is no command \"keep 10\"; did you mean \"keep 1\"?");
    CHECK_EQ(Refused("full scren"), "there is no command \"full scren\"; did you mean \"full screen\"?");
    CHECK_EQ(Refused("film sped 2"), "film: a film has no \"sped\"; did you mean \"speed\"?");
    CHECK_EQ(Refused("fade afer 2"), "fade: fading has no \"afer\"; did you mean \"after\"?");
}

TEST_CASE("A command with words too many or too few says how it is written") {
    CHECK_EQ(Refused("set BrushWidth"), "set: it is written set NAME VALUE ...");
    CHECK_EQ(Refused("set A 1 B"), "set: it is written set NAME VALUE ...");
    CHECK_EQ(Refused("toggle A 1"), "toggle: it is written toggle NAME [VALUE VALUE]");
    CHECK_EQ(Refused("moveStroke 1 to 2 3"), "moveStroke: it is written moveStroke NUMBER by RIGHT DOWN");
    CHECK_EQ(Refused("fade over 5"), "fade: it is written fade after SECONDS [over FIELDS], or fade false");
    CHECK_EQ(Refused("list all"), "list: it is written list");
}

TEST_CASE("Numbers are numbers within their limits") {
    CHECK_EQ(Refused("undo x"), "undo: \"x\" is no number");
    CHECK_EQ(Refused("undo 1.5"), "undo: \"1.5\" is no whole number");
    CHECK_EQ(Refused("undo 0"), "undo: \"0\" is out of range");
    CHECK_EQ(Refused("speed nan"), "speed: \"nan\" is no number");
    CHECK_EQ(Refused("speed 9"), "speed: \"9\" is out of range");
    CHECK_EQ(Refused("film play yes"), "film: \"yes\" is neither true nor false");
}

}  // namespace kel
