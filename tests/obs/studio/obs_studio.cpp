#include "tests/obs/studio/obs_studio.h"

#include <arpa/inet.h>
#include <doctest/doctest.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

#include <X11/Xlib.h>  // last: its macros take names of the others

namespace chalkpane::obs::testing {
namespace {

// A port that nobody listens on now.
int FreePort() {
    const int handle = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    REQUIRE_EQ(bind(handle, reinterpret_cast<const sockaddr*>(&address), length), 0);
    REQUIRE_EQ(getsockname(handle, reinterpret_cast<sockaddr*>(&address), &length), 0);
    close(handle);
    return ntohs(address.sin_port);
}

// A text message of a client, whose mask is all zeros.
std::string Framed(const std::string& text) {
    std::string frame = "\x81";
    if (text.size() < 126) {
        frame += static_cast<char>(0x80 | text.size());
    } else {
        frame += static_cast<char>(0x80 | 126);
        frame += static_cast<char>(text.size() >> 8);
        frame += static_cast<char>(text.size() & 0xFF);
    }
    return frame + std::string(4, '\0') + text;
}

std::string TextOf(const std::filesystem::path& file) {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

}  // namespace

void WaitUntil(const std::string& what, const std::function<bool()>& isSo) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(3);
    while (!isSo()) {
        if (std::chrono::steady_clock::now() > end) FAIL("never: " << what);
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
    }
}

ObsStudio::ObsStudio() : m_port(FreePort()) {
    WriteConfiguration();
    Start();
    Connect();
}

ObsStudio::~ObsStudio() { Kill(); }

void ObsStudio::Kill() {
    if (m_program <= 0) return;
    kill(m_program, SIGKILL);
    waitpid(m_program, nullptr, 0);
    m_program = -1;
}

void ObsStudio::BeginAgain() {
    Kill();
    Start();
    Connect();
}

void ObsStudio::WriteConfiguration() const {
    const std::filesystem::path folder = m_home / ".config" / "obs-studio";
    const std::filesystem::path plugin = folder / "plugins" / "obs-chalkpane" / "bin" / "64bit";
    std::filesystem::create_directories(plugin);
    std::filesystem::create_directories(folder / "basic" / "profiles" / "Untitled");
    std::filesystem::create_directories(m_home / "run");
    std::filesystem::permissions(m_home / "run", std::filesystem::perms::owner_all);
    std::filesystem::copy_file(OBS_PLUGIN, plugin / "obs-chalkpane.so");
    cli::testing::WriteText(folder / "global.ini",
                            "[General]\nFirstRun=true\nLastVersion=486539266\nEnableAutoUpdates=false\n"
                            "[Basic]\nProfile=Untitled\nProfileDir=Untitled\n"
                            "SceneCollection=Untitled\nSceneCollectionFile=Untitled\n"
                            "[OBSWebSocket]\nFirstLoad=false\nServerEnabled=true\nAlertsEnabled=false\n"
                            "AuthRequired=false\nServerPort=" +
                                std::to_string(m_port) + "\n");
    cli::testing::WriteText(folder / "basic" / "profiles" / "Untitled" / "basic.ini",
                            "[General]\nName=Untitled\n[Output]\nMode=Advanced\n"
                            "[AdvOut]\nRecType=FFmpeg\nFFOutputToFile=true\nFFExtension=nut\nFFFormat=nut\n"
                            "FFVEncoder=rawvideo\nFFVEncoderId=13\nFFAEncoder=pcm_s16le\nFFAEncoderId=65536\n"
                            "FFIgnoreCompat=true\nFFAudioMixes=1\nFFFilePath=" +
                                m_home.Path().string() +
                                "\n[Video]\nBaseCX=1024\nBaseCY=1024\nOutputCX=1024\nOutputCY=1024\n"
                                "FPSType=2\nFPSNum=10\nFPSDen=1\nColorFormat=RGB\nColorSpace=sRGB\nColorRange=Full\n");
}

void ObsStudio::Start() {
    const std::string home = m_home.Path().string();
    m_program = fork();
    if (m_program != 0) return;
    prctl(PR_SET_PDEATHSIG, SIGKILL);  // however the test ends, nothing of it runs on
    setenv("HOME", home.c_str(), 1);
    setenv("XDG_RUNTIME_DIR", (home + "/run").c_str(), 1);
    unsetenv("XDG_CONFIG_HOME");
    unsetenv("WAYLAND_DISPLAY");
    setenv("DISPLAY", display.Name().c_str(), 1);
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
    const int log = open((home + "/log").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(log, STDOUT_FILENO);
    dup2(log, STDERR_FILENO);
    execl(OBS_PROGRAM, OBS_PROGRAM, "--multi", "--minimize-to-tray", nullptr);
    _exit(127);
}

void ObsStudio::Connect() {
    WaitUntil("OBS listens", [&] {
        REQUIRE_MESSAGE(waitpid(m_program, nullptr, WNOHANG) == 0, Log());
        m_socket = std::make_unique<kel::testing::RawConnection>(m_port);
        return m_socket->IsConnected();
    });
    REQUIRE(
        m_socket->Send("GET / HTTP/1.1\r\nHost: obs\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                       "Sec-WebSocket-Key: AAAAAAAAAAAAAAAAAAAAAA==\r\nSec-WebSocket-Version: 13\r\n"
                       "Sec-WebSocket-Protocol: obswebsocket.json\r\n\r\n"));
    (void)m_socket->ReadUntil("\"op\":0}");
    REQUIRE(m_socket->Send(Framed(R"({"op":1,"d":{"rpcVersion":1,"eventSubscriptions":0}})")));
    (void)m_socket->ReadUntil("\"op\":2}");
}

nlohmann::json ObsStudio::Ask(const std::string& request, const nlohmann::json& data) {
    const nlohmann::json message = {
        {"op", 6},
        {"d", {{"requestType", request}, {"requestId", std::to_string(++m_requests)}, {"requestData", data}}}};
    REQUIRE(m_socket->Send(Framed(message.dump())));
    const std::string answer = m_socket->ReadUntil("\"op\":7}");  // without events nothing else comes
    const std::size_t start = answer.find("{\"d\":");
    REQUIRE_MESSAGE(start != std::string::npos, Log());
    const nlohmann::json what = nlohmann::json::parse(answer.substr(start))["d"];
    if (!what["requestStatus"]["result"].get<bool>()) return nullptr;
    return what.value("responseData", nlohmann::json::object());
}

void ObsStudio::WaitForFrames(int frames) {
    const auto rendered = [&] { return Ask("GetStats")["renderTotalFrames"].get<int>(); };
    const int wanted = rendered() + frames;
    WaitUntil("frames of OBS", [&] { return rendered() >= wanted; });
}

kel::testing::WindowPlace ObsStudio::InteractWindow(const std::string& source) const {
    std::optional<kel::testing::WindowPlace> window;
    WaitUntil("a window for " + source, [&] {
        window = display.FindWindow("Interacting with '" + source + "'");
        return window.has_value();
    });
    return *window;
}

void ObsStudio::CloseInteractWindow(const std::string& source) {
    const kel::testing::WindowPlace window = InteractWindow(source);
    Display* connection = XOpenDisplay(display.Name().c_str());
    REQUIRE_NE(connection, nullptr);
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window.id;
    event.xclient.message_type = XInternAtom(connection, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(connection, "WM_DELETE_WINDOW", False));
    XSendEvent(connection, window.id, False, NoEventMask, &event);
    XCloseDisplay(connection);
    WaitUntil("the window has closed",
              [&] { return !display.FindWindow("Interacting with '" + source + "'").has_value(); });
}

std::string ObsStudio::Screenshot(const std::string& source) {
    return Ask("GetSourceScreenshot", {{"sourceName", source}, {"imageFormat", "png"}})["imageData"];
}

// A new scene is a reason to save.
nlohmann::json ObsStudio::Save() {
    const std::string name = "Saved " + std::to_string(++m_saves);
    REQUIRE_FALSE(Ask("CreateScene", {{"sceneName", name}}).is_null());
    WaitUntil("the scene collection is saved", [&] {
        const nlohmann::json scenes = Collection()["scene_order"];
        return std::ranges::any_of(scenes, [&](const nlohmann::json& scene) { return scene["name"] == name; });
    });
    return Collection();
}

std::filesystem::path ObsStudio::Record() {
    constexpr std::uintmax_t frames = 3 * 1024 * 1024 * 4;
    REQUIRE_FALSE(Ask("StartRecord").is_null());
    std::filesystem::path file;
    WaitUntil("frames recorded", [&] {
        for (const auto& entry : std::filesystem::directory_iterator(m_home.Path()))
            if (entry.path().extension() == ".nut") file = entry.path();
        return !file.empty() && std::filesystem::file_size(file) > frames;
    });
    return file;
}

nlohmann::json ObsStudio::Close() {
    kill(m_program, SIGINT);
    WaitUntil("OBS has ended", [&] { return waitpid(m_program, nullptr, WNOHANG) == m_program; });
    m_program = -1;
    return Collection();
}

nlohmann::json ObsStudio::Collection() const {
    const std::filesystem::path file = m_home / ".config/obs-studio/basic/scenes/Untitled.json";
    return std::filesystem::exists(file) ? nlohmann::json::parse(TextOf(file)) : nlohmann::json::object();
}

std::string ObsStudio::Log() const { return TextOf(m_home / "log"); }

}  // namespace chalkpane::obs::testing
