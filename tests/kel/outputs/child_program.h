#pragma once

#include <doctest/doctest.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace kel::testing {

// Until it is so, looking again and again; fails the test after minutes. No machine is too slow.
inline void AwaitThat(const std::string& what, const std::function<bool()>& isSo) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(3);
    while (!isSo()) {
        if (std::chrono::steady_clock::now() > end) FAIL("never: " << what);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

// A program beside the test, which ends with it.
class ChildProgram {
public:
    // output: a file for what it says on standard output
    explicit ChildProgram(std::vector<std::string> words, const std::string& output = "/dev/null") {
        std::vector<char*> line;
        line.reserve(words.size() + 1);
        for (std::string& word : words) line.push_back(word.data());
        line.push_back(nullptr);
        m_process = fork();
        if (m_process != 0) return;
        prctl(PR_SET_PDEATHSIG, SIGKILL);  // however the test ends, nothing of it runs on
        setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
        const int nothing = open("/dev/null", O_RDWR);
        dup2(nothing, STDIN_FILENO);
        dup2(nothing, STDERR_FILENO);
        dup2(open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), STDOUT_FILENO);
        execvp(line[0], line.data());
        _exit(127);
    }
    ~ChildProgram() {
        if (m_process <= 0) return;
        Signal(SIGKILL);
        waitpid(m_process, nullptr, 0);
    }
    ChildProgram(const ChildProgram&) = delete;
    ChildProgram& operator=(const ChildProgram&) = delete;
    ChildProgram(ChildProgram&&) = delete;
    ChildProgram& operator=(ChildProgram&&) = delete;

    void Signal(int number) const { kill(m_process, number); }
    [[nodiscard]] bool IsRunning() {
        int status = 0;
        if (m_process <= 0 || waitpid(m_process, &status, WNOHANG) == 0) return m_process > 0;
        m_process = -1;
        m_exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return false;
    }
    // Of a program that runs no more; as a shell tells of it.
    [[nodiscard]] int ExitCode() const { return m_exitCode; }
    [[nodiscard]] int WaitForEnd() {
        AwaitThat("the program ends", [&] { return !IsRunning(); });
        return m_exitCode;
    }

private:
    pid_t m_process = -1;
    int m_exitCode = -1;
};

}  // namespace kel::testing
