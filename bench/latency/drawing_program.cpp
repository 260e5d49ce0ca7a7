#include "bench/latency/drawing_program.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <ctime>
#include <stdexcept>

namespace latency {
namespace {

void End(pid_t process) {
    if (process <= 0) return;
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
}

[[noreturn]] void BeBusy() {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    for (std::atomic<unsigned> count = 0;; ++count) continue;
}

}  // namespace

DrawingProgram::DrawingProgram(const std::string& display, std::vector<std::string> line) {
    std::vector<char*> words;
    words.reserve(line.size() + 1);
    for (std::string& word : line) words.push_back(word.data());
    words.push_back(nullptr);
    m_program = fork();
    if (m_program != 0) return;
    prctl(PR_SET_PDEATHSIG, SIGKILL);  // nothing runs on, however the measuring ends
    setenv("DISPLAY", display.c_str(), 1);
    setenv("SDL_VIDEODRIVER", "x11", 1);
    execv(words[0], words.data());
    _exit(127);
}

DrawingProgram::~DrawingProgram() { End(m_program); }

double DrawingProgram::ProcessorSeconds() const {
    clockid_t clock{};
    timespec time{};
    if (clock_getcpuclockid(m_program, &clock) != 0 || clock_gettime(clock, &time) != 0)
        throw std::runtime_error("a program that is measured has ended");
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

Load::Load(int processes) {
    for (int i = 0; i < processes; ++i) {
        m_processes.push_back(fork());
        if (m_processes.back() == 0) BeBusy();
    }
}

Load::~Load() {
    for (const pid_t process : m_processes) End(process);
}

}  // namespace latency
