#include "kel/outputs/live_address.h"

#include <doctest/doctest.h>

#include "cli/error.h"
#include "kel/outputs/live_streams.h"
#include "kel/outputs/output_format.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"
#include "tests/kel/kel_folder.h"

namespace kel {
namespace {

std::string RefusalOf(View view, const std::string& address) {
    return cli::testing::Thrown([&] { (void)PlanLive({view, address}, false); });
}

std::string Described(View view, const std::string& address, bool isStraight = false) {
    return DescribeLive(PlanLive({view, address}, isStraight));
}

}  // namespace

TEST_CASE("A live address says who is to read what, and how") {
    const LivePlan srt = PlanLive({View::Rendered, "srt://:5000?mode=listener&latency=200&rate=25"}, false);
    CHECK_EQ(srt.address.host, "127.0.0.1");
    CHECK_EQ(srt.address.port, 5000);
    CHECK_EQ(srt.address.Of("latency"), "200");
    CHECK_EQ(srt.rate, 25);
    CHECK_EQ(srt.format->word, "h264");
    const LivePlan tcp = PlanLive({View::Overlay, "tcp://[::1]:0/?codec=raw&alpha=straight"}, false);
    CHECK_EQ(tcp.address.host, "::1");
    CHECK_EQ(tcp.format->word, "raw");
    CHECK(tcp.isStraight);
    CHECK_FALSE(PlanLive({View::Overlay, "tcp://:0?alpha=premultiplied"}, true).isStraight);
}

TEST_CASE("What is sent says how its colours and its alpha are to be taken") {
    CHECK_EQ(Described(View::Overlay, "tcp://:0"),
             "strokes with alpha, NUT with FFV1, premultiplied, gamma, full range");
    CHECK_EQ(Described(View::Overlay, "tcp://:0?codec=raw", true),
             "strokes with alpha, NUT with raw BGRA, straight, gamma, full range");
    CHECK_EQ(Described(View::Rendered, "udp://10.0.0.1:5000"), "picture, MPEG-TS with H.264, gamma, limited range");
    CHECK_EQ(Described(View::Key, "udp://10.0.0.1:5000"),
             "key of the strokes, MPEG-TS with H.264, gamma, limited range");
    CHECK_EQ(Described(View::FillKey, "srt://host:5000"),
             "fill and key of the strokes side by side, MPEG-TS with H.264, premultiplied, gamma, limited range");
}

TEST_CASE("A wrong live address is refused with what is wrong and the nearest right word") {
    CHECK_EQ(RefusalOf(View::Rendered, "picture.mp4"),
             "picture.mp4: is no live address; they begin with srt://, udp:// or tcp://");
    CHECK_EQ(RefusalOf(View::Rendered, "tpc://:5000"),
             "tpc://:5000: is no live address; they begin with srt://, udp:// or tcp://; did you mean \"tcp://\"?");
    CHECK_EQ(RefusalOf(View::Overlay, "udp://10.0.0.1:5000"),
             "udp://10.0.0.1:5000: H.264 has no alpha; the strokes alone need tcp://, or else --live-fill-key, or "
             "--live-fill and --live-key");
    CHECK_EQ(RefusalOf(View::Rendered, "udp://:5000"), "udp://:5000: has no host to send to");
    CHECK_EQ(RefusalOf(View::Rendered, "srt://:5000"), "srt://:5000: has no host to send to");
    CHECK_EQ(RefusalOf(View::Rendered, "tcp://localhost"), "tcp://localhost: has no port; tcp://HOST:PORT");
    CHECK_EQ(RefusalOf(View::Rendered, "tcp://:70000"),
             "tcp://:70000: a port is a whole number from 0 to 65535, not \"70000\"");
    CHECK_EQ(RefusalOf(View::Rendered, "udp://h:0"), "udp://h:0: a port is a whole number from 1 to 65535, not \"0\"");
    CHECK_EQ(RefusalOf(View::Rendered, "tcp://:1?codek=raw"),
             "tcp://:1?codek=raw: \"codek\" is none of its settings, alpha, rate and codec; did you mean \"codec\"?");
    CHECK_EQ(RefusalOf(View::Rendered, "tcp://:1?codec=h264"),
             "tcp://:1?codec=h264: codec is ffv1 or raw, not \"h264\"");
    CHECK_EQ(RefusalOf(View::Rendered, "tcp://:1?rate"), "tcp://:1?rate: \"rate\" has no value");
    CHECK_EQ(RefusalOf(View::Rendered, "tcp://:1?rate=2&rate=3"), "tcp://:1?rate=2&rate=3: rate is said twice");
    CHECK_EQ(RefusalOf(View::Rendered, "tcp://:1?rate=0"),
             "tcp://:1?rate=0: rate is a whole number from 1 to 1000, not \"0\"");
}

TEST_CASE("Every live scheme is one row of the table of outputs") {
    for (const LiveScheme& scheme : LiveSchemes()) {
        CAPTURE(scheme.beginning);
        int rows = 0;
        for (const OutputFormat& format : OutputFormats())
            if (format.ending == scheme.beginning && format.medium == OutputMedium::Stream) ++rows;
        CHECK_EQ(rows, 1);
        for (const std::string_view word : scheme.formats) CHECK_NE(FormatOfStream(word), nullptr);
    }
}

TEST_CASE("The page about outputs knows every setting of every live address") {
    const std::string page = cli::testing::ReadText(KEL_SOURCE_FOLDER "/docs/output.md");
    for (const LiveScheme& scheme : LiveSchemes()) {
        CHECK_NE(page.find("`" + std::string(scheme.beginning)), std::string::npos);
        for (const std::string_view setting : scheme.settings) {
            CAPTURE(setting);
            CHECK_NE(page.find("`" + std::string(setting) + "="), std::string::npos);
        }
        if (scheme.formats.size() == 1) continue;
        for (const std::string_view word : scheme.formats) {
            CAPTURE(word);
            CHECK_NE(page.find("`codec=" + std::string(word) + "`"), std::string::npos);
        }
    }
}

TEST_CASE("A live output that cannot be is refused before anything is played") {
    const testing::KelFolder folder;
    const LiveSink taken(PlanLive({View::Rendered, "tcp://:0"}, false));
    const std::string address = taken.Figures().address;
    testing::CheckRefused(folder, "play s.json --live " + address,
                          address + ": cannot be listened at: Address already in use");
    testing::CheckRefused(folder, "play s.json --live-fill tcp://:0",
                          "tcp://:0: --live-fill and --live-key are sent as a pair; the other one is missing");
    testing::CheckRefused(folder, "play s.json --out tcp://:0",
                          "tcp://:0: is no file; what is sent live goes to the address of --live, --live-overlay, "
                          "--live-fill and --live-key, or --live-fill-key");
    // No part of a name has so many letters, so nobody is asked for it.
    const std::string nowhere = "udp://" + std::string(64, 'x') + ":5000";
    testing::CheckRefusedLike(folder, "play s.json --live " + nowhere, nowhere + ": there is no such place: .*");
}

}  // namespace kel
