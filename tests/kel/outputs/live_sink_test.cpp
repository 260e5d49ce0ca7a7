#include "kel/outputs/live_sink.h"

#include <arpa/inet.h>
#include <doctest/doctest.h>
#include <netinet/in.h>

#include <array>
#include <cstdlib>
#include <thread>

#include "kel/outputs/live_streams.h"
#include "kel/video/socket_handle.h"
#include "tests/kel/outputs/live_places.h"
#include "tests/kel/outputs/src_over.h"
#include "tests/kel/outputs/stream_reader.h"
#include "tests/kel/pixels.h"
#include "tests/kel/telestrator.h"

// What is sent live, read by a program of its own.

namespace kel {
namespace {

using testing::AwaitThat;
using testing::LivePlaces;
using testing::LivePlacesOf;
using testing::Pixel;
using testing::StreamReader;

constexpr WindowSize liveSize{64, 48};
constexpr double fieldRate = 50;

// A sink of a view that is one picture, field after field.
class FedSink {
public:
    FedSink(View view, const std::string& address, SharedPicture picture)
        : sink(PlanLive({view, address}, false)), m_view(view), m_picture(std::move(picture)) {
        SinkSettings settings;
        settings.size = liveSize;
        settings.fieldsPerSecond = fieldRate;
        sink.Open(settings);
    }
    void Feed() {
        OutputField field;
        field.number = ++m_number;
        field.seconds = static_cast<double>(m_number) / fieldRate;
        field.views[static_cast<std::size_t>(m_view)] = m_picture;
        sink.TakeField(field);
    }
    // Fields go on until it is so.
    void FeedUntil(const std::string& what, const std::function<bool()>& isSo) {
        AwaitThat(what, [&] {
            Feed();
            return isSo();
        });
    }

    LiveSink sink;

private:
    View m_view;
    SharedPicture m_picture;
    std::int64_t m_number = -1;
};

SharedPicture PlainShared(const Pixel& pixel, WindowSize of = liveSize) {
    return std::make_shared<const picture_io::Picture>(testing::Plain(of.width, of.height, pixel));
}

}  // namespace

// Within 1: the strokes were found by the picture that the scene renders, to within rounding of that picture.
TEST_CASE("Strokes that are sent live arrive exactly, and composited over the picture give the rendered one") {
    const picture_io::Picture base = testing::Speckled(testing::side, testing::side);
    testing::Telestrator telestrator(1, &base);
    const picture_io::Picture without = telestrator.host.ReadFrame();
    testing::Scribble(telestrator);
    LiveStreams streams({{View::Overlay, "tcp://:0"}, {View::Overlay, "tcp://:0?codec=raw&alpha=straight"}}, false);
    streams.Start({testing::side, testing::side}, fieldRate);
    StreamReader premultiplied(streams.Figures()[0].address);
    StreamReader straight(streams.Figures()[1].address);
    AwaitThat("both are read", [&] {
        streams.TakeField(telestrator.host);
        return !premultiplied.Program().IsRunning() && !straight.Program().IsRunning();
    });
    streams.Close();
    const picture_io::Picture with = telestrator.host.ReadFrame();
    const picture_io::Picture first = premultiplied.Last(testing::side, testing::side);
    const picture_io::Picture second = straight.Last(testing::side, testing::side);
    CHECK(first == telestrator.host.ReadPremultipliedOverlay());
    CHECK(second == telestrator.host.ReadOverlay());
    REQUIRE_FALSE(first.rgba.empty());
    REQUIRE_FALSE(with == without);
    CHECK_LE(testing::WorstDifference(testing::Composited(first, without, false), with), 1);
    CHECK_LE(testing::WorstDifference(testing::Composited(second, without, true), with), 1);
}

namespace {

// Kills its reader, and looks at what the next one sees.
void CheckOutlivesItsReader(const LiveScheme& scheme, View view, const std::string& settings, const Pixel& colour,
                            int within) {
    CAPTURE(scheme.beginning);
    CAPTURE(settings);
    const LivePlaces addresses = LivePlacesOf(scheme.beginning);
    const bool isTold = scheme.beginning != "udp://";  // whether anybody reads
    FedSink fed(view, addresses.sink + settings, PlainShared(colour));
    const std::string where = addresses.reader.empty() ? fed.sink.Figures().address : addresses.reader;
    {
        StreamReader killed = StreamReader::Endless(where);
        fed.FeedUntil("it is read", [&] { return killed.HasRead(); });
        killed.Kill();
    }
    // Of SRT that takes five seconds, and whoever calls before gives up after three.
    if (isTold) fed.FeedUntil("it is given up", [&] { return !fed.sink.Figures().hasReader; });
    StreamReader next(where, 5);
    fed.FeedUntil("the next one has read", [&] { return !next.Program().IsRunning(); });
    const picture_io::Picture seen = next.Last(liveSize.width, liveSize.height);
    REQUIRE_FALSE(seen.rgba.empty());
    CHECK_LE(testing::Difference(seen.At(30, 20), colour), within);
    fed.sink.Close();
    CHECK_EQ(fed.sink.Figures().trouble, "");
    CHECK_FALSE(fed.sink.Figures().hasReader);
    if (isTold) CHECK_GE(fed.sink.Figures().readers, 2);
}

}  // namespace

// 4 levels: H.264 at its quality of 18 and two conversions between RGB and the limited range, each within a level or
// two for a plain picture.
TEST_CASE("Every scheme sends what its reader sees, and goes on when the reader is killed") {
    for (const LiveScheme& scheme : LiveSchemes())
        CheckOutlivesItsReader(scheme, View::Rendered, {}, {200, 40, 90, 255}, scheme.UsualFormat().isExact ? 0 : 4);
}

TEST_CASE("Strokes with alpha, packed and raw, and fill and key go on when their reader is killed") {
    constexpr Pixel halfCovered{100, 20, 45, 128};
    for (const LiveScheme& scheme : LiveSchemes()) {
        if (scheme.UsualFormat().hasAlpha) {
            CheckOutlivesItsReader(scheme, View::Overlay, {}, halfCovered, 0);
            CheckOutlivesItsReader(scheme, View::Overlay, "?codec=raw", halfCovered, 0);
        }
        if (scheme.beginning != "udp://") continue;
        for (const View view : {View::Fill, View::Key, View::FillKey})
            CheckOutlivesItsReader(scheme, view, {}, {200, 40, 90, 255}, 4);
    }
}

// As above; the key is half covered, 128.
TEST_CASE("Fill and key stand side by side in one picture") {
    picture_io::Picture both(2 * liveSize.width, liveSize.height);
    for (std::int32_t y = 0; y < liveSize.height; ++y)
        for (std::int32_t x = 0; x < 2 * liveSize.width; ++x)
            both.Set(x, y, x < liveSize.width ? Pixel{255, 0, 0, 255} : Pixel{128, 128, 128, 255});
    const LivePlaces addresses = LivePlacesOf("udp://");
    FedSink fed(View::FillKey, addresses.sink, std::make_shared<const picture_io::Picture>(both));
    StreamReader reader(addresses.reader, 5);
    fed.FeedUntil("it is read", [&] { return !reader.Program().IsRunning(); });
    const picture_io::Picture seen = reader.Last(2 * liveSize.width, liveSize.height);
    REQUIRE_FALSE(seen.rgba.empty());
    CHECK_LE(testing::Difference(seen.At(20, 20), {255, 0, 0, 255}), 4);
    CHECK_LE(testing::Difference(seen.At(liveSize.width + 20, 20), {128, 128, 128, 255}), 4);
}

namespace {

// A reader that has connected and takes nothing until it is told to.
class StandingReader {
public:
    explicit StandingReader(const std::string& address) : m_handle(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in place{};
        place.sin_family = AF_INET;
        place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        place.sin_port = htons(static_cast<std::uint16_t>(std::stoi(address.substr(address.rfind(':') + 1))));
        REQUIRE_EQ(connect(m_handle.Get(), reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
    }
    void Take() const {
        std::array<char, 65536> bytes{};
        while (recv(m_handle.Get(), bytes.data(), bytes.size(), MSG_DONTWAIT) > 0) {
        }
    }

private:
    SocketHandle m_handle;
};

}  // namespace

TEST_CASE("A reader that stands still loses pictures and nobody waits for it; it goes on when it takes them again") {
    constexpr WindowSize large{512, 512};  // a megabyte a picture, more in a few than connections hold
    FedSink fed(View::Overlay, "tcp://:0?codec=raw", PlainShared({1, 2, 3, 4}, large));
    const StandingReader reader(fed.sink.Figures().address);
    fed.FeedUntil("pictures are dropped", [&] { return fed.sink.Figures().dropped > 5; });
    const std::int64_t sent = fed.sink.Figures().sent;
    fed.FeedUntil("it goes on", [&] {
        reader.Take();
        return fed.sink.Figures().sent > sent + 50;
    });
    CHECK_EQ(fed.sink.Figures().readers, 1);
    fed.FeedUntil("it is waited for again", [&] { return fed.sink.Figures().dropped > 200; });
    fed.sink.Close();
    CHECK_FALSE(fed.sink.Figures().hasReader);
}

TEST_CASE("A sink ends without a reader, in the middle of one, and unopened") {
    for (const LiveScheme& scheme : LiveSchemes()) {
        CAPTURE(scheme.beginning);
        FedSink fed(View::Rendered, LivePlacesOf(scheme.beginning).sink, PlainShared(testing::red));
        fed.Feed();
        fed.sink.Close();
        CHECK_EQ(fed.sink.Figures().dropped, 0);
    }
    const LiveSink unopened(PlanLive({View::Rendered, "tcp://:0"}, false));
    FedSink read(View::Rendered, "tcp://:0", PlainShared(testing::red));
    const StandingReader reader(read.sink.Figures().address);
    read.FeedUntil("it is read", [&] { return read.sink.Figures().sent > 0; });
}

TEST_CASE("A rate leaves pictures out, and those are not dropped ones") {
    FedSink fed(View::Rendered, "tcp://:0?rate=10", PlainShared(testing::red));
    const StandingReader reader(fed.sink.Figures().address);
    AwaitThat("it is there", [&] { return fed.sink.Figures().hasReader; });
    // 50 fields a second for 10 pictures: one in five, so 11 of 51, the one at 0 counted. Each is sent before the next.
    int wanted = 0;
    for (int field = 0; field < 51; ++field) {
        const bool isWanted = fed.sink.Wants(field / fieldRate);
        wanted += isWanted ? 1 : 0;
        fed.Feed();
        AwaitThat("it is sent", [&] { return fed.sink.Figures().sent == wanted; });
    }
    CHECK_EQ(wanted, 11);
    CHECK_EQ(fed.sink.Figures().dropped, 0);
}

TEST_CASE("After a picture of another size a reader comes again") {
    LiveSink sink(PlanLive({View::Rendered, "tcp://:0"}, false));
    SinkSettings settings;
    settings.fieldsPerSecond = fieldRate;
    for (const std::int32_t side : {32, 48}) {
        CAPTURE(side);
        sink.Open(settings);
        StreamReader reader(sink.Figures().address);
        OutputField field;
        field.views[0] = PlainShared(testing::green, {side, side});
        AwaitThat("it is read", [&] {
            sink.TakeField(field);
            field.seconds = static_cast<double>(++field.number) / fieldRate;
            return !reader.Program().IsRunning();
        });
        CHECK(reader.Last(side, side) == testing::Plain(side, side, testing::green));
    }
}

TEST_CASE("What cannot be sent is said, and nobody waits for it") {
    FedSink fed(View::Rendered, "tcp://:0", PlainShared(testing::red, {1, 1}));
    const std::string address = fed.sink.Figures().address;
    const StandingReader reader(address);
    fed.FeedUntil("it is said", [&] { return !fed.sink.Figures().trouble.empty(); });
    fed.sink.Close();
    CHECK_EQ(fed.sink.Figures().trouble,
             address + ": cannot be sent: pictures of FFV1 have sides of at least 2 pixels");
    CHECK_NE(EndOf(fed.sink.Figures()).find("; " + address + ": cannot be sent"), std::string::npos);
}

}  // namespace kel
