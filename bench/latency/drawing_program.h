#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace latency {

// A program with a window, on a display, ended with its owner.
class DrawingProgram {
public:
    DrawingProgram(const std::string& display, std::vector<std::string> line);
    ~DrawingProgram();
    DrawingProgram(const DrawingProgram&) = delete;
    DrawingProgram& operator=(const DrawingProgram&) = delete;
    DrawingProgram(DrawingProgram&&) = delete;
    DrawingProgram& operator=(DrawingProgram&&) = delete;

    [[nodiscard]] double ProcessorSeconds() const;  // of all its threads so far

private:
    pid_t m_program = -1;
};

// Threads that do nothing but keep the processor busy.
class Load {
public:
    explicit Load(int processes);
    ~Load();
    Load(const Load&) = delete;
    Load& operator=(const Load&) = delete;
    Load(Load&&) = delete;
    Load& operator=(Load&&) = delete;

private:
    std::vector<pid_t> m_processes;
};

}  // namespace latency
