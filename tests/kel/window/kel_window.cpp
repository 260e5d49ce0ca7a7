#include "tests/kel/window/kel_window.h"

#include <doctest/doctest.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <nlohmann/json.hpp>
#include <thread>

#include "kel/session/session_lines.h"

namespace kel::testing {
namespace {

constexpr auto patience = std::chrono::minutes(3);
constexpr auto lookAgain = std::chrono::milliseconds(30);
constexpr int unforeseen = 1;  // the code of what nobody means: the program's own words are all there is to go by

int CodeOf(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status); }

}  // namespace

void WaitUntil(const std::string& what, const std::function<bool()>& isSo) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!isSo()) {
        if (std::chrono::steady_clock::now() > end) FAIL("never: " << what);
        std::this_thread::sleep_for(lookAgain);
    }
}

void KelWindow::Start(const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {KEL_PROGRAM, "window"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> line;
    line.reserve(words.size() + 1);
    for (std::string& word : words) line.push_back(word.data());
    line.push_back(nullptr);
    const std::string home = folder.Path().string();
    const std::string complaints = (folder / "stderr").string();
    const std::string said = (folder / "stdout").string();
    m_program = fork();
    if (m_program != 0) return;
    prctl(PR_SET_PDEATHSIG, SIGKILL);  // however the test ends, nothing of it runs on
    setenv("DISPLAY", display.Name().c_str(), 1);
    setenv("SDL_VIDEODRIVER", "x11", 1);
    setenv("SDL_AUDIODRIVER", "dummy", 0);
    setenv("XDG_STATE_HOME", (home + "/state").c_str(), 1);
    // The desktop's libraries unload their drivers before the end, which leaves leaks without a name to know them by;
    // the workspace's own memory is watched in its tests without a window.
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    const int file = open(complaints.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    dup2(file, STDERR_FILENO);
    dup2(open(said.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), STDOUT_FILENO);
    if (chdir(home.c_str()) == 0) execv(line[0], line.data());
    _exit(127);
}

KelWindow::~KelWindow() {
    if (m_program <= 0) return;
    kill(m_program, SIGKILL);
    waitpid(m_program, nullptr, 0);
}

void KelWindow::Signal(int number) const { kill(m_program, number); }

int KelWindow::WaitForEnd() {
    int status = 0;
    WaitUntil("the program ends", [&] { return waitpid(m_program, &status, WNOHANG) != 0; });
    m_program = -1;
    const int code = CodeOf(status);
    if (code == unforeseen) MESSAGE("the program said: " << cli::testing::ReadText(folder / "stderr"));
    return code;
}

bool KelWindow::IsRunning() {
    int status = 0;
    if (m_program <= 0 || waitpid(m_program, &status, WNOHANG) == 0) return m_program > 0;
    m_program = -1;
    return false;
}

nlohmann::json KelWindow::Recorded(const std::string& name) const {
    return nlohmann::json::parse(WholeSessionText(cli::testing::ReadText(folder / name)));
}

std::int64_t KelWindow::FieldOf(const std::string& recording, const std::string& key) const {
    if (!std::filesystem::exists(folder / recording)) return -1;
    std::int64_t field = -1;
    const nlohmann::json session = Recorded(recording);
    for (const auto& event : session["events"])
        if (event.contains(key)) field = event["field"].get<std::int64_t>();
    return field;
}

picture_io::Picture KelWindow::PlayedOverlay(const std::string& recording) const {
    const std::string command = "cd '" + folder.Path().string() +
                                "' && ASAN_OPTIONS=detect_leaks=0 '" KEL_PROGRAM "' play " + recording +
                                " --canvas played-overlay.png";
    REQUIRE_EQ(std::system(command.c_str()), 0);
    return picture_io::ReadPicture(folder / "played-overlay.png");
}

}  // namespace kel::testing
