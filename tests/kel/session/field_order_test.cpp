#include <doctest/doctest.h>

#include <cmath>
#include <cstring>

#include "module/abi/host_api.h"
#include "tests/cli/thrown.h"
#include "tests/kel/probe.h"

namespace kel {
namespace {

using Calls = std::vector<std::string>;

// Writes down every callback of the probe.
class Recorder {
public:
    Recorder() {
        ProbeHooks& hooks = m_probed.hooks;
        const auto note = [this](const std::string& what) { return [this, what] { m_calls.push_back(what); }; };
        hooks.perField = note("field");
        hooks.preRender = note("pre");
        hooks.postRender = note("post");
        hooks.guiStatus = note("gui");
        hooks.keyboard = note("key");
        hooks.changed = [this](std::int32_t parameter) { m_calls.push_back("changed " + std::to_string(parameter)); };
        hooks.action = [this](std::int32_t action) { m_calls.push_back("action " + std::to_string(action)); };
        hooks.mouse = [this](bool pressed, std::int32_t x, std::int32_t y) {
            m_calls.push_back((pressed ? "press " : "release ") + std::to_string(x) + " " + std::to_string(y));
        };
        Field();  // the first render
    }

    // The calls of one field.
    Calls Field() {
        m_calls.clear();
        m_probed.host->RunField();
        return m_calls;
    }
    testing::ProbedHost& Probed() { return m_probed; }
    Host& TheHost() { return *m_probed.host; }

private:
    testing::ProbedHost m_probed;
    Calls m_calls;
};

}  // namespace

TEST_CASE("A field without anything to do is one callback and no render") {
    Recorder recorder;
    CHECK_EQ(recorder.Field(), Calls{"field"});
}

TEST_CASE("A redraw that was asked for is one render, in the same field") {
    Recorder recorder;
    recorder.Probed().hooks.perField = [] { _api__scene_redraw(); };
    CHECK_EQ(recorder.Field(), Calls{"pre", "post"});
    recorder.Probed().hooks.perField = nullptr;
    CHECK_EQ(recorder.Field(), Calls{});
}

TEST_CASE("A field is pointer, settings and buttons, field callback, render, in this order") {
    Recorder recorder;
    Host& host = recorder.TheHost();
    host.SetCamera(testing::CameraInFront());  // asks for a redraw
    host.SetParameter(recorder.Probed().container, "Count", 4);
    host.PushButton(recorder.Probed().container, "Go");
    host.QueuePointer(PointerKind::Press, 3, 5);
    CHECK_EQ(recorder.Field(), Calls{"press 3 5", "changed 2", "gui", "action 7", "field", "pre", "post"});
}

TEST_CASE("Settings and buttons come in the order of the operator's hand") {
    Recorder recorder;
    const ObjectId container = recorder.Probed().container;
    recorder.TheHost().PushButton(container, "Go");
    recorder.TheHost().SetParameter(container, "Switch", 0);
    recorder.TheHost().PressKey();
    recorder.TheHost().PushButton(container, "Go");
    CHECK_EQ(recorder.Field(), Calls{"action 7", "changed 1", "gui", "key", "action 7", "field"});
}

TEST_CASE("A setting to the present value is no change") {
    Recorder recorder;
    recorder.TheHost().SetParameter(recorder.Probed().container, "Count", 3);
    CHECK_EQ(recorder.Field(), Calls{"field"});
}

TEST_CASE("A field delivers one press or release, and later ones wait for the next") {
    Recorder recorder;
    Host& host = recorder.TheHost();
    host.QueuePointer(PointerKind::Press, 1, 1);
    host.QueuePointer(PointerKind::Release, 2, 2);
    host.QueuePointer(PointerKind::Press, 3, 3);
    CHECK_EQ(recorder.Field(), Calls{"press 1 1", "field"});
    CHECK(host.HasQueuedPointer());
    CHECK_EQ(recorder.Field(), Calls{"release 2 2", "field"});
    CHECK_EQ(recorder.Field(), Calls{"press 3 3", "field"});
    CHECK_FALSE(host.HasQueuedPointer());
    CHECK_EQ(recorder.Field(), Calls{"field"});
}

// Otherwise the poll would replace what the press has changed before that was uploaded.
TEST_CASE("A move after a press waits for the next field, moves before one do not") {
    Recorder recorder;
    Host& host = recorder.TheHost();
    std::vector<std::int32_t> polled;
    recorder.Probed().hooks.perField = [&] {
        std::int32_t x = 0;
        std::int32_t y = 0;
        _api__tessmar_query_mouse_pos(0, &x, &y);
        polled.push_back(x);
    };
    for (const std::int32_t x : {1, 2}) host.QueuePointer(PointerKind::Move, x, 0);
    host.QueuePointer(PointerKind::Press, 3, 0);
    for (const std::int32_t x : {4, 5}) host.QueuePointer(PointerKind::Move, x, 0);
    recorder.Field();
    recorder.Field();
    recorder.Field();
    CHECK_EQ(polled, std::vector<std::int32_t>{3, 5, 5});
    CHECK_FALSE(host.HasQueuedPointer());
}

TEST_CASE("The interface is asked for once at the start") {
    ProbeHooks hooks;
    int asked = 0;
    Calls order;
    hooks.registration = testing::RegisterProbe;
    hooks.construct = [&](void*) { order.emplace_back("construct"); };
    hooks.guiStatus = [&] {
        ++asked;
        order.emplace_back("gui");
    };
    hooks.cleanup = [&] { order.emplace_back("cleanup"); };
    testing::UseHooks(&hooks);
    {
        Host host({8, 8});
        host.Attach(host.AddContainer({}), host.LoadModule(PROBE_MODULE));
        host.RunField();
        host.RunField();
        CHECK_EQ(asked, 1);
    }
    CHECK_EQ(order, Calls{"construct", "gui", "cleanup"});
    testing::UseHooks(nullptr);
}

TEST_CASE("The block holds the values before the module constructs the rest, and nothing else that is of use") {
    ProbeHooks hooks;
    hooks.registration = testing::RegisterProbe;
    std::int32_t switchField = -1;
    std::int32_t countField = -1;
    std::string nameField;
    std::uint8_t unsetByte = 0;
    hooks.construct = [&](void* block) {
        const auto* bytes = static_cast<const char*>(block);
        const char* name = nullptr;
        std::memcpy(&switchField, bytes, 4);
        std::memcpy(&countField, bytes + 4, 4);
        std::memcpy(&name, bytes + 8, sizeof name);
        std::memcpy(&unsetByte, bytes + 63, 1);
        nameField = name;
    };
    testing::UseHooks(&hooks);
    Host host({8, 8});
    host.Attach(host.AddContainer({}), host.LoadModule(PROBE_MODULE),
                {{"Count", 9}, {"Name", std::string("chalk.png")}});
    CHECK_EQ(switchField, 1);
    CHECK_EQ(countField, 9);
    CHECK_EQ(nameField, "chalk.png");
    CHECK_EQ(unsetByte, 0xA5);
    testing::UseHooks(nullptr);
}

TEST_CASE("What a module shows and hides reaches the operator") {
    testing::ProbedHost probed;
    const auto showCount = [](std::int32_t visible) { return [visible] { qoSendGuiParameterShow("Count", visible); }; };
    CHECK(probed.host->IsParameterShown(probed.container, "Count"));
    probed.hooks.guiStatus = showCount(0);
    probed.host->SetParameter(probed.container, "Switch", 0);
    probed.host->RunField();
    CHECK_FALSE(probed.host->IsParameterShown(probed.container, "Count"));
    probed.hooks.guiStatus = showCount(1);
    probed.host->SetParameter(probed.container, "Switch", 1);
    probed.host->RunField();
    CHECK(probed.host->IsParameterShown(probed.container, "Count"));
    CHECK(probed.host->GetParameter(probed.container, "Switch") == ParameterValue(1));
}

TEST_CASE("The operator's mistakes are refused and change nothing") {
    testing::ProbedHost probed;
    Host& host = *probed.host;
    const ObjectId bare = host.AddContainer({});
    using cli::testing::Thrown;
    CHECK_EQ(Thrown([&] { host.SetParameter(probed.container, "Cuont", 4); }), "there is no parameter \"Cuont\"");
    CHECK_EQ(Thrown([&] { host.SetParameter(probed.container, "Count", 10); }),
             "parameter \"Count\": 10 is above the maximum 9");
    CHECK_EQ(Thrown([&] { host.PushButton(probed.container, "Stop"); }), "there is no button \"Stop\"");
    CHECK_EQ(Thrown([&] { host.SetParameter(bare, "Count", 4); }),
             "container " + std::to_string(bare) + " has no plug-in");
    CHECK_EQ(Thrown([&] { host.SetPicture(99, picture_io::Picture(1, 1)); }), "there is no container 99");
    CHECK_EQ(Thrown([&] { host.Attach(probed.container, host.LoadModule(PROBE_MODULE)); }),
             "container " + std::to_string(probed.container) + " already has a plug-in");
    CHECK_EQ(Thrown([&] { (void)host.ReadCanvas(bare); }), "the container shows no canvas yet");
    host.RunField();
    CHECK(host.GetParameter(probed.container, "Count") == ParameterValue(3));
}

TEST_CASE("A scene that cannot be drawn is refused") {
    using cli::testing::Thrown;
    Host host({8, 8});
    Camera camera;
    camera.target = camera.position;
    CHECK_EQ(Thrown([&] { host.SetCamera(camera); }), "the camera stands where it looks at");
    camera = {};
    camera.fieldOfView = 180;
    CHECK_NE(Thrown([&] { host.SetCamera(camera); }), "nothing");
    camera.fieldOfView = std::nan("");
    CHECK_NE(Thrown([&] { host.SetCamera(camera); }), "nothing");
    Placement placement;
    placement.rotation[1] = std::nan("");
    CHECK_EQ(Thrown([&] { host.AddContainer(placement); }), "a number of the container is not finite, or beyond 1e9");
    placement = {};
    placement.size = {-1, 1};
    CHECK_NE(Thrown([&] { host.AddContainer(placement); }), "nothing");
}

TEST_CASE("A window without pixels, or with too many, is refused, and another one can be had afterwards") {
    using cli::testing::Thrown;
    CHECK_EQ(Thrown([] { Host host({0, 8}); }), "a window of 0 x 8 pixels: sides of 1 to 16384 are possible");
    CHECK_NE(Thrown([] { Host host({8, 16385}); }), "nothing");
    CHECK_EQ(Thrown([] { Host host({8, 8}); }), "nothing");
}

}  // namespace kel
