#include "kel/live/live_source.h"

#include <doctest/doctest.h>

#include <algorithm>

#include "cli/error.h"
#include "tests/cli/thrown.h"
#include "tests/kel/live/camera.h"
#include "tests/kel/live/watched_source.h"
#include "tests/kel/pixels.h"

namespace kel {
namespace {

using testing::Await;
using testing::AwaitPictureOf;
using testing::Camera;
using testing::Local;
using testing::ShownGrey;
using testing::Watched;
}  // namespace

TEST_CASE("Live pictures come by UDP, by TCP and by SRT") {
    struct Way {
        const char* scheme;
        const char* senderWords;
        const char* format;
        int kind;
    };
    for (const Way& way :
         {Way{"udp", "?pkt_size=1316", "mpegts", SOCK_DGRAM}, Way{"tcp", "?listen", "nut", SOCK_STREAM},
          Way{"srt", "?mode=listener", "mpegts", SOCK_DGRAM}}) {
        CAPTURE(way.scheme);
        const int port = testing::FreePort(way.kind);
        const Camera camera({.address = Local(way.scheme, port, way.senderWords), .format = way.format, .grey = 90});
        Watched watched(Local(way.scheme, port));
        watched.AwaitPicture();
        CHECK_EQ(watched.Source().Width(), 64);
        CHECK_EQ(watched.Source().Height(), 48);
        CHECK_EQ(watched.Source().FramesPerSecond(), doctest::Approx(50));
        watched.AwaitGrey(90);
    }
}

TEST_CASE("A camera that is cut off and comes back is told, and its last picture stays meanwhile") {
    const int port = testing::FreePort();
    Watched watched(Local("tcp", port));
    {
        const Camera camera({.address = Local("tcp", port, "?listen"), .format = "nut", .grey = 60});
        watched.AwaitGrey(60);
    }
    watched.AwaitNews("is lost: it has ended. The last picture stays until it is back.");
    CHECK_FALSE(watched.Source().IsThere());
    Await("the last of what had come", [&] { return !watched.TakePicture(); });
    CHECK_EQ(std::abs(watched.Middle()[0] - ShownGrey(60)) <= 4, true);
    const Camera camera({.address = Local("tcp", port, "?listen"), .format = "nut", .grey = 180});
    watched.AwaitNews("is back.");
    watched.AwaitGrey(180);
}

TEST_CASE("Pictures of another size are fitted into the first one's") {
    const int port = testing::FreePort();
    Watched watched(Local("tcp", port));
    {
        const Camera camera({.address = Local("tcp", port, "?listen"), .width = 96, .height = 48, .grey = 60});
        watched.AwaitGrey(60);
    }
    const Camera camera({.address = Local("tcp", port, "?listen"), .width = 128, .height = 128, .grey = 180});
    watched.AwaitGrey(180);
    watched.AwaitNews("The pictures are 128 x 128 now; they are fitted into 96 x 48.");
    CHECK_EQ(watched.Source().Width(), 96);
    // A square in the middle of twice its width: columns 24 to 71.
    CHECK_EQ(watched.Picture().At(20, 24), testing::black);
    CHECK_EQ(watched.Picture().At(75, 24), testing::black);
    CHECK_GT(watched.Picture().At(30, 24)[0], 150);
    CHECK_GT(watched.Picture().At(65, 1)[0], 150);
}

TEST_CASE("A damaged stream is passed over until it is whole again") {
    const int port = testing::FreePort();
    Camera camera({.address = Local("tcp", port, "?listen"), .grey = 60});
    Watched watched(Local("tcp", port));
    watched.AwaitGrey(60);
    camera.SetDamaged(true);
    const int sent = camera.Sent();
    Await("damaged pictures", [&] { return camera.Sent() > sent + 20; });
    camera.SetGrey(180);
    camera.SetDamaged(false);
    watched.AwaitGrey(180);
    CHECK_EQ(watched.Source().Width(), 64);
}

TEST_CASE("What waits for a camera ends at once when it is closed") {
    // Nobody ever sends; the time to open in is a year, and the test's own a few minutes.
    const Watched datagrams(Local("udp", testing::FreePort(SOCK_DGRAM)));
    const Watched listener(Local("srt", testing::FreePort(SOCK_DGRAM), "?mode=listener"));
    const testing::BoundPort silent(SOCK_STREAM);
    REQUIRE_EQ(listen(silent.Socket(), 1), 0);
    const Watched connected(Local("tcp", silent.Number()));
}

TEST_CASE("A stream that leads on to files is no picture") {
    for (const std::string text : {"ffconcat version 1.0\nfile '/etc/hostname'\n",
                                   "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\nfile:///etc/hostname\n"}) {
        const testing::BoundPort server(SOCK_STREAM);
        REQUIRE_EQ(listen(server.Socket(), 4), 0);
        const std::string name = Local("tcp", server.Number());
        LiveSource source(ParseLiveName(name));
        const int connection = accept(server.Socket(), nullptr, nullptr);
        REQUIRE_GE(connection, 0);
        CHECK_EQ(write(connection, text.data(), text.size()), static_cast<ssize_t>(text.size()));
        close(connection);
        CHECK_EQ(cli::testing::Thrown([&] { AwaitPictureOf(source); }),
                 name + ": cannot be opened: what comes is none of what live pictures may come as");
    }
}

TEST_CASE("A screen that is not there is an error and not waited for") {
    LiveSource source(ParseLiveName("screen::9876"));
    CHECK_EQ(cli::testing::Thrown(
                 [&] { Await("an error", [&] { return source.WaitForPicture(std::chrono::milliseconds(20)); }); }),
             "screen::9876: cannot be opened: there is no such screen, or none that may be looked at");
}

TEST_CASE("A device that is no camera is an error and not waited for") {
    LiveName name;
    name.kind = LiveName::Kind::Device;
    name.url = name.shown = "/dev/null";
    name.inputFormat = name.formats = "video4linux2,v4l2";
    name.protocols = "file";
    LiveSource source(name);
    CHECK_EQ(cli::testing::Thrown(
                 [&] { Await("an error", [&] { return source.WaitForPicture(std::chrono::milliseconds(20)); }); }),
             "/dev/null: cannot be opened: Inappropriate ioctl for device");
}

TEST_CASE("Pictures that are larger than a scene may be are left out, and told") {
    const int port = testing::FreePort();
    const Camera camera(
        {.address = Local("tcp", port, "?listen"), .format = "nut", .codec = "ffv1", .width = 8208, .height = 16});
    Watched watched(Local("tcp", port));
    watched.AwaitNews("A picture is left out: it is larger than 8192 pixels");
    CHECK_FALSE(watched.Source().WaitForPicture(std::chrono::milliseconds(0)));
    CHECK_EQ(watched.Source().Width(), 0);
}

}  // namespace kel
