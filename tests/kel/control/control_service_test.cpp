#include "kel/control/control_service.h"

#include <doctest/doctest.h>

#include <atomic>
#include <thread>

#include "kel/control/control_client.h"
#include "tests/kel/control/bare_target.h"

namespace kel {
namespace {

using nlohmann::json;
using testing::BareTarget;

// A window without its display: commands, then a field, then the news, over and over.
void RunWindow(BareTarget& target, ControlService& service, const std::atomic<bool>& isOver) {
    while (!isOver) {
        (void)service.RunCommands(target);
        target.workspace->RunFields(1);
        target.workspace->FollowInk();
        service.TellState(*target.workspace);
    }
}

// Has a conversation with a window that runs meanwhile on this thread.
void TalkWhile(BareTarget& target, ControlService& service, const ControlConversation& conversation) {
    std::atomic<bool> isOver = false;
    const ControlAddress door = service.Door();
    std::thread client([&] {
        TalkToWindow(door, conversation);
        isOver = true;
    });
    RunWindow(target, service, isOver);
    client.join();
}

ControlOptions AnyPort() { return {ControlAddress{}}; }

}  // namespace

TEST_CASE("What comes over a WebSocket changes the workspace, and every change is told") {
    BareTarget target;
    ControlService service(AnyPort());
    std::vector<json> answers;
    std::vector<json> events;
    ControlConversation conversation;
    conversation.commands = {"set BrushColor #ff0000", "get BrushColor", "set BrushColr #ff0000", "button Clear"};
    conversation.takeAnswer = [&](const std::string&, const std::string& line) {
        answers.push_back(json::parse(line));
    };
    conversation.takeEvent = [&](const std::string& line) {
        events.push_back(json::parse(line));
        const bool isRed = events.back()["event"] == "parameter" && events.back()["name"] == "BrushColor" &&
                           events.back()["value"] == "#ff0000ff";
        return !isRed || answers.size() < 4;
    };
    TalkWhile(target, service, conversation);
    REQUIRE_EQ(answers.size(), 4);
    CHECK_EQ(answers[0], json{{"ok", true}});
    CHECK_EQ(answers[1], json{{"ok", true}, {"value", "#ff0000ff"}});
    CHECK_EQ(answers[2]["error"], "there is no parameter \"BrushColr\"; did you mean \"BrushColor\"?");
    CHECK_EQ(answers[3], json{{"ok", true}});
    REQUIRE(!events.empty());
    CHECK_EQ(events[0], json{{"event", "opened"}, {"file", "grey.png"}});
    CHECK_EQ(target.Value("BrushColor"), "#ff0000ff");
}

TEST_CASE("A command is answered before the field in which it takes hold, and told right after it") {
    BareTarget target;
    ControlService service(AnyPort());
    std::atomic<bool> isListening = false;
    std::atomic<bool> isAnswered = false;
    std::atomic<bool> isTold = false;
    ControlConversation conversation;
    conversation.commands = {"get BrushWidth", "set BrushWidth 17"};
    conversation.takeAnswer = [&](const std::string& command, const std::string&) {
        (command == "get BrushWidth" ? isListening : isAnswered) = true;
    };
    conversation.takeEvent = [&](const std::string& line) {
        const json event = json::parse(line);
        isTold = event["event"] == "parameter" && event["name"] == "BrushWidth" && event["value"] == 17;
        return !isTold;
    };
    conversation.staysForEvents = true;
    const ControlAddress door = service.Door();
    std::thread client([&] { TalkToWindow(door, conversation); });
    while (!isListening) {
        (void)service.RunCommands(target);
        target.workspace->RunFields(1);
        service.TellState(*target.workspace);
    }
    // No field is run until the command has come and been answered.
    while (!isAnswered) (void)service.RunCommands(target);
    CHECK_EQ(target.workspace->TheHost().GetParameter(target.workspace->Chosen()->id, "BrushWidth") ==
                 ParameterValue(std::int32_t{17}),
             false);
    target.workspace->RunFields(1);
    service.TellState(*target.workspace);
    client.join();
    CHECK(isTold);
    CHECK(target.workspace->TheHost().GetParameter(target.workspace->Chosen()->id, "BrushWidth") ==
          ParameterValue(std::int32_t{17}));
}

TEST_CASE("What the operator reads is told to those who listen") {
    BareTarget target;
    ControlService service(AnyPort());
    bool isTold = false;
    ControlConversation conversation;
    conversation.commands = {"get BrushWidth"};
    conversation.takeAnswer = [](const std::string&, const std::string&) {};
    conversation.takeEvent = [&](const std::string& line) {
        const json event = json::parse(line);
        isTold = event["event"] == "news" && event["text"] == "saved";
        return !isTold;
    };
    conversation.staysForEvents = true;
    std::atomic<bool> isOver = false;
    const ControlAddress door = service.Door();
    std::thread client([&] {
        TalkToWindow(door, conversation);
        isOver = true;
    });
    while (!isOver) {
        (void)service.RunCommands(target);
        target.workspace->RunFields(1);
        service.TellState(*target.workspace);
        service.TellNews("saved");
    }
    client.join();
    CHECK(isTold);
}

TEST_CASE("A token is kept for the next window on the same port, where only its operator reads it") {
    const cli::testing::TemporaryFolder state;
    setenv("XDG_STATE_HOME", state.Path().c_str(), 1);
    int port = 0;
    std::string token;
    {
        const ControlService any(AnyPort());
        port = any.Door().port;
        CHECK_EQ(KeptToken(port), any.Door().token);
    }
    CHECK_EQ(KeptToken(port), "");  // nobody asked for that port
    {
        const ControlService chosen({ControlAddress{"127.0.0.1", port, {}}});
        token = chosen.Door().token;
        CHECK_EQ(token.size(), 32);
    }
    const ControlService again({ControlAddress{"127.0.0.1", port, {}}});
    CHECK_EQ(again.Door().token, token);
    const std::filesystem::path file = state.Path() / "kel" / ("control-" + std::to_string(port));
    CHECK(std::filesystem::status(file).permissions() ==
          (std::filesystem::perms::owner_read | std::filesystem::perms::owner_write));
    std::filesystem::permissions(file, std::filesystem::perms::all);
    CHECK_EQ(KeptToken(port), "");  // others may have written it
    unsetenv("XDG_STATE_HOME");
}

}  // namespace kel
