#pragma once

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "kel/outputs/outputs.h"

namespace kel {

// Outputs that are written while one draws, on a thread of its own, so that no field waits for them.
//
// All of them or none: when one cannot follow in real time, or the thread falls behind, or a field was not drawn, they
// are abandoned, nothing is left behind, and the same files are made from the recording. All functions are called on
// the thread that draws; none throws Error for what goes wrong with a file, since the recording's way tells it.
class LiveOutputs {
public:
    explicit LiveOutputs(OutputOptions options) : m_options(std::move(options)) {}
    ~LiveOutputs() { Abandon(); }
    LiveOutputs(const LiveOutputs&) = delete;
    LiveOutputs& operator=(const LiveOutputs&) = delete;
    LiveOutputs(LiveOutputs&&) = delete;
    LiveOutputs& operator=(LiveOutputs&&) = delete;

    // Begins, if all that is wanted can follow; field 0 comes next.
    void Start(WindowSize window, double fieldsPerSecond);
    // The host has just drawn the next field. Returns at once.
    void TakeField(Host& host);
    // The same in the place of the one taken last: what is written is what a field looks like when the next one comes.
    void TakeFieldAgain(Host& host);
    void Abandon();
    // Writes the end of all files and gives them their names. False: they were abandoned, or no field came.
    [[nodiscard]] bool Finish();

private:
    void PassOn();
    void WriteFields();
    void End();

    OutputOptions m_options;
    std::unique_ptr<Outputs> m_outputs;  // null: not started, or abandoned
    std::thread m_writer;
    std::vector<OutputField> m_last;  // waits for the next one
    bool m_hasField = false;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::vector<OutputField>> m_waiting;  // guarded by m_mutex, as are the next two
    bool m_ends = false;
    bool m_hasFailed = false;
};

}  // namespace kel
