#include <doctest/doctest.h>

#include "tests/kel/live/rtsp_camera.h"
#include "tests/kel/live/watched_source.h"

namespace kel {
namespace {

using testing::RtspCamera;

void CheckIsCutOffAndComesBack(RtspCamera::Way way) {
    const testing::RtspDoor door;
    testing::Watched watched(door.Address());
    {
        const RtspCamera camera(door, way, 60);
        watched.AwaitPicture();
        CHECK_EQ(watched.Source().Width(), 64);
        CHECK_EQ(watched.Source().Height(), 48);
        watched.AwaitGrey(60);
    }
    watched.AwaitNews(door.Address() + " is lost: it has ended. The last picture stays until it is back.");
    CHECK_FALSE(watched.Source().IsThere());
    testing::Await("the last of what had come", [&] { return !watched.TakePicture(); });
    CHECK(std::abs(watched.Middle()[0] - testing::ShownGrey(60)) <= 4);
    const RtspCamera camera(door, way, 180);
    watched.AwaitNews(door.Address() + " is back.");
    watched.AwaitGrey(180);
}

}  // namespace

TEST_CASE("A network camera is seen by RTSP, is cut off, and comes back") {
    CheckIsCutOffAndComesBack(RtspCamera::Way::Tcp);
}

TEST_CASE("A network camera that sends nothing but datagrams is seen by RTSP, is cut off, and comes back") {
    CheckIsCutOffAndComesBack(RtspCamera::Way::Udp);
}

TEST_CASE("A network camera that is asked and never answers holds nobody") {
    const testing::RtspDoor door;
    int viewer = -1;
    {
        const testing::Watched watched(door.Address());
        viewer = accept(door.Socket(), nullptr, nullptr);
        char first = 0;
        CHECK_EQ(recv(viewer, &first, 1, 0), 1);
    }
    close(viewer);
}

}  // namespace kel
