#include "kel/outputs/live_outputs.h"

#include <doctest/doctest.h>

#include <string>

#include "tests/cli/temporary_folder.h"
#include "tests/kel/telestrator.h"

namespace kel {
namespace {

using cli::testing::TemporaryFolder;

constexpr double rate = 50.0;

// A stroke, field by field; `look` after each.
template <typename Look>
void DrawStroke(Look look) {
    testing::Telestrator telestrator(0);
    for (std::int32_t at = 100; at < 400; at += 30) {
        telestrator.Draw({{at, at}});
        look(telestrator.host);
    }
}

}  // namespace

TEST_CASE("What is written while one draws is what is written afterwards") {
    const TemporaryFolder folder;
    OutputOptions options;
    options.out = (folder / "out.mov").string();
    options.overlay = (folder / "overlay.mov").string();
    Outputs outputs(options, {testing::side, testing::side}, rate, 0);
    DrawStroke([&](Host& host) { outputs.TakeField(host); });
    outputs.Finish();
    OutputOptions liveOptions;
    liveOptions.out = (folder / "live.mov").string();
    liveOptions.overlay = (folder / "live-overlay.mov").string();
    LiveOutputs live(liveOptions);
    live.Start({testing::side, testing::side}, rate);
    DrawStroke([&](Host& host) { live.TakeField(host); });
    CHECK(live.Finish());
    CHECK(cli::testing::ReadText(options.out) == cli::testing::ReadText(liveOptions.out));
    CHECK(cli::testing::ReadText(options.overlay) == cli::testing::ReadText(liveOptions.overlay));
    CHECK_EQ(folder.Entries(), 4);
}

TEST_CASE("Outputs that cannot follow, or are abandoned, leave nothing and say so") {
    const TemporaryFolder folder;
    for (const std::string name : {"last.png", "all%05d.png", "slow.webm", "none/out.mov", "out.mov"}) {
        CAPTURE(name);
        OutputOptions options;
        options.out = (folder / name).string();
        LiveOutputs live(options);
        live.Start({testing::side, testing::side}, rate);
        DrawStroke([&](Host& host) { live.TakeField(host); });
        if (name == "out.mov") live.Abandon();
        CHECK_FALSE(live.Finish());
        CHECK_EQ(folder.Entries(), 0);
    }
}

TEST_CASE("A field that is taken again is written as it was last") {
    const TemporaryFolder folder;
    OutputOptions options;
    options.out = (folder / "last.mov").string();
    Outputs outputs(options, {testing::side, testing::side}, rate, 0);
    int field = 0;
    DrawStroke([&](Host& host) {
        if (++field % 5 == 0) outputs.TakeField(host);
    });
    outputs.Finish();
    OutputOptions liveOptions;
    liveOptions.out = (folder / "live.mov").string();
    LiveOutputs live(liveOptions);
    live.Start({testing::side, testing::side}, rate);
    field = 0;
    DrawStroke([&](Host& host) {
        if (field++ % 5 == 0)
            live.TakeField(host);
        else
            live.TakeFieldAgain(host);
    });
    CHECK(live.Finish());
    CHECK(cli::testing::ReadText(options.out) == cli::testing::ReadText(liveOptions.out));
}

TEST_CASE("A live output that got no field is none") {
    const TemporaryFolder folder;
    OutputOptions options;
    options.out = (folder / "out.mov").string();
    LiveOutputs live(options);
    live.Start({16, 16}, rate);
    CHECK_FALSE(live.Finish());
    LiveOutputs idle(OutputOptions{});
    idle.Start({16, 16}, rate);
    CHECK_FALSE(idle.Finish());
    CHECK_EQ(folder.Entries(), 0);
}

}  // namespace kel
