#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "kel/outputs/live_address.h"
#include "kel/outputs/output_sink.h"
#include "kel/video/stream_output.h"
#include "kel/video/stream_sound.h"
#include "kel/video/stream_writer.h"

namespace kel {

// How a live output does.
struct LiveFigures {
    std::string address;
    std::string what;  // as DescribeLive has it
    bool hasReader = false;
    std::string trouble;                       // why it sends no more; empty: it does
    std::int64_t sent = 0;                     // pictures
    std::int64_t dropped = 0;                  // pictures that came while a reader could not follow
    std::int64_t readers = 0;                  // that have come so far
    std::chrono::nanoseconds processorTime{};  // of all that were sent
};

// A live output: sends what it is given to one reader after the other, on a thread of its own.
//
// The rendered picture has its sound beside it, where there is some; it is read, decoded and encoded on that thread
// too.
//
// Whoever gives it fields never waits. What a reader cannot follow is dropped and counted; without a reader fields go
// by uncounted. A reader that comes begins with the next field, and one that goes is no error. TakeField belongs to one
// thread, Figures to any.
class LiveSink final : public OutputSink {
public:
    // Listens from now on. Throws Error when that cannot be done.
    explicit LiveSink(LivePlan plan);
    ~LiveSink() override;
    LiveSink(const LiveSink&) = delete;
    LiveSink& operator=(const LiveSink&) = delete;
    LiveSink(LiveSink&&) = delete;
    LiveSink& operator=(LiveSink&&) = delete;

    [[nodiscard]] std::vector<View> Views() const override { return {m_plan.view}; }
    [[nodiscard]] bool WantsEveryField() const override { return true; }
    [[nodiscard]] bool IsLive() const override { return true; }
    [[nodiscard]] bool IsStraight() const { return m_plan.isStraight; }
    [[nodiscard]] LiveFigures Figures() const;

    // Fields of this rate come next; a second time: of another scene.
    void Open(const SinkSettings& settings) override;
    // True: a field of that time would be sent, so it is worth looking at. Counts what a reader then misses.
    [[nodiscard]] bool Wants(double seconds);
    void TakeField(const OutputField& field) override;
    // No field comes any more. Several sinks are told before they are closed, so that their ends take one moment.
    void FinishSoon();
    // Sends what waits to a reader that takes it, for a moment at most.
    void Close() override;
    void Commit() override {}  // what is sent is sent

private:
    using Lock = std::unique_lock<std::mutex>;

    [[nodiscard]] std::int64_t NumberOf(double seconds) const;
    void Run();
    void RunReaders();
    bool ServeReader();
    std::optional<OutputField> NextField();
    bool Send(const OutputField& field);
    bool SendSound(const OutputField& field);
    void Begin(const picture_io::Picture& picture);
    void StopThread();

    LivePlan m_plan;
    std::unique_ptr<StreamOutput> m_output;
    double m_rate = 0;           // pictures a second that are sent
    std::int64_t m_number = -1;  // of the last field that was taken
    std::thread m_thread;

    // The thread's own.
    std::unique_ptr<StreamWriter> m_writer;  // null: the reader has got nothing yet
    double m_writtenRate = 0;                // pictures a second of what it has got
    StreamSound m_sound;
    bool m_hasSound = false;  // the reader is sent some
    SharedPicture m_last;
    std::int64_t m_lastNumber = -1;

    mutable std::mutex m_mutex;  // guards all below
    std::condition_variable m_changed;
    std::deque<OutputField> m_waiting;
    double m_openRate = 0;  // of the fields that wait
    LiveFigures m_figures;
    bool m_ends = false;
    std::chrono::steady_clock::time_point m_latestEnd;  // there once it ends
    bool m_isOver = false;
};

}  // namespace kel
