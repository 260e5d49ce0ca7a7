#include <doctest/doctest.h>

#include <array>
#include <nlohmann/json.hpp>
#include <optional>

#include "tests/kel/live/camera.h"
#include "tests/kel/window/paper_window.h"

// A window over live pictures: shown, drawn on, cut off and back.

namespace kel {
namespace {

using testing::Camera;
using testing::Difference;
using testing::ink;
using testing::KelWindow;
using testing::PaperWindow;
using testing::Pixel;
using testing::WaitUntil;

// A camera of 640 x 480 at a port of this machine, which a window opens by its name.
class CameraPlace {
public:
    void TurnOn(int grey) {
        m_camera.emplace(Camera::Settings{
            .address = Name() + "?listen", .format = "nut", .width = 640, .height = 480, .grey = grey});
    }
    void TurnOff() { m_camera.reset(); }
    [[nodiscard]] std::string Name() const { return "tcp://127.0.0.1:" + std::to_string(m_port); }
    [[nodiscard]] std::string Title() const { return "127.0.0.1:" + std::to_string(m_port) + " - kel"; }

private:
    int m_port = testing::FreePort();
    std::optional<Camera> m_camera;
};

// On the screen, in a window whose picture has the camera's size: at shares of its width and height.
Pixel OnPicture(const KelWindow& window, const CameraPlace& camera, double x, double y) {
    const auto place = window.display.FindWindow(camera.Title());
    if (!place) return {};
    constexpr int status = 34;  // pixels below the picture
    const int top = (place->height - status - 480) / 2;
    return window.display.Screen().At(place->x + static_cast<std::int32_t>(x * 640),
                                      place->y + top + static_cast<std::int32_t>(y * 480));
}

void WaitForGrey(const KelWindow& window, const CameraPlace& camera, int grey) {
    const auto shown = static_cast<std::uint8_t>(testing::ShownGrey(grey));
    WaitUntil("the camera's grey " + std::to_string(grey), [&] {
        return Difference(OnPicture(window, camera, 0.1, 0.1), {shown, shown, shown, 255}) <= 4;  // lossy
    });
}

bool HasInk(const KelWindow& window, const CameraPlace& camera) {
    return Difference(OnPicture(window, camera, 0.5, 0.5), ink) < 60;
}

void DrawOnPicture(KelWindow& window, const CameraPlace& camera) {
    const auto place = window.display.FindWindow(camera.Title());
    window.display.TypeKey("r");
    window.display.TypeKey("3");
    for (int i = 0; i < 10; ++i) window.display.TypeKey("bracketright");
    for (const double x : {0.3, 0.4, 0.6, 0.7}) {
        window.display.MovePointer(place->x + static_cast<std::int32_t>(x * 640), place->y + (place->height - 34) / 2);
        if (x == 0.3) window.display.PressButton(true);
    }
    window.display.PressButton(false);
    WaitUntil("the ink is seen", [&] { return HasInk(window, camera); });
}

// What a window tells where --osc-feedback sends it.
class News {
public:
    [[nodiscard]] std::string Place() const { return "127.0.0.1:" + std::to_string(m_port.Number()); }
    void WaitFor(const std::string& part) {
        WaitUntil("news with: " + part, [&] {
            std::array<char, 2048> packet{};
            for (ssize_t got = 0; got >= 0;) {
                got = recv(m_port.Socket(), packet.data(), packet.size(), MSG_DONTWAIT);
                if (got > 0) m_told.append(packet.data(), static_cast<std::size_t>(got));
            }
            return m_told.find(part) != std::string::npos;
        });
    }

private:
    testing::BoundPort m_port{SOCK_DGRAM};
    std::string m_told;
};

}  // namespace

TEST_CASE("A window over a camera that is cut off says so, keeps picture and ink, and goes on when it is back") {
    CameraPlace camera;
    News news;
    KelWindow window;
    window.Start({camera.Name(), "--record", "run.json", "--osc-feedback", news.Place()});
    camera.TurnOn(200);
    WaitForGrey(window, camera, 200);
    DrawOnPicture(window, camera);
    camera.TurnOff();
    news.WaitFor(camera.Name() + " is lost: ");
    WaitForGrey(window, camera, 200);
    CHECK(HasInk(window, camera));
    camera.TurnOn(60);
    news.WaitFor(camera.Name() + " is back.");
    WaitForGrey(window, camera, 60);
    CHECK(HasInk(window, camera));
    window.display.TypeKey("q", true);
    CHECK_EQ(window.WaitForEnd(), 0);
    CHECK_EQ(window.Recorded("run.json")["containers"][0]["live"], camera.Name());
}

TEST_CASE("An address that is typed where files are opened shows its pictures, and one that cannot be is refused") {
    CameraPlace camera;
    News news;
    PaperWindow window({"--osc-feedback", news.Place()});
    const auto open = [&](const std::string& name) {
        window.WaitUntilStill();
        window.display.TypeKey("o", true);
        window.WaitUntilStill();
        window.display.TypeText(name);
        window.WaitUntilStill();
        window.display.TypeKey("Return");
    };
    open("gopher://127.0.0.1:70");
    news.WaitFor("live pictures do not come by \"gopher\"");
    open(camera.Name());
    camera.TurnOn(200);
    WaitForGrey(window, camera, 200);
    window.display.TypeKey("q", true);
    CHECK_EQ(window.WaitForEnd(), 0);
    CHECK_EQ(window.Recorded("run-2.json")["containers"][0]["live"], camera.Name());
}

}  // namespace kel
