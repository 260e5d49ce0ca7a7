#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kel/outputs/field_views.h"
#include "kel/outputs/live_sink.h"

namespace kel {

// All that is sent live while one draws, or while a session plays. No call waits for a reader. All functions are called
// on the thread that draws.
class LiveStreams {
public:
    //   isStraight  where an address does not say it
    // Listens where readers come from outside, from now on. Throws Error for what cannot be sent.
    LiveStreams(const std::vector<LiveRequest>& requests, bool isStraight);

    [[nodiscard]] bool AreThere() const { return !m_sinks.empty(); }
    // Fields of such a scene come next.
    void Start(WindowSize window, double fieldsPerSecond);
    // The host has just drawn a field.
    //   sound   what is heard with it
    //   fields  that have passed since the last one, this one counted
    void TakeField(Host& host, const SoundMoment& sound = {}, std::int64_t fields = 1);
    // The next field is of another host than those before.
    void ChangeHost();
    // Sends what waits to readers that take it, for a moment at most.
    void Close();

    [[nodiscard]] std::vector<LiveFigures> Figures() const;

private:
    [[nodiscard]] FieldViews& ViewsFor(const LiveSink& sink) {
        return sink.IsStraight() ? m_straight : m_premultiplied;
    }

    std::vector<std::unique_ptr<LiveSink>> m_sinks;
    FieldViews m_straight{true};
    FieldViews m_premultiplied{false};
    double m_fieldsPerSecond = 0;
    std::int64_t m_field = -1;
};

// A line for the operator when it begins: where it is read, and what a reader has to know of it.
[[nodiscard]] std::string BeginningOf(const LiveFigures& figures);
// And one when it has ended.
[[nodiscard]] std::string EndOf(const LiveFigures& figures);

}  // namespace kel
