#include "kel/session/player_pointer.h"

#include <algorithm>
#include <cmath>

#include "cli/error.h"
#include "kel/session/session_curve.h"

namespace kel {
namespace {

class TrackBuilder {
public:
    explicit TrackBuilder(const Session& session) : m_session(session) {}

    void Add(const SessionEvent& event, const PointerEvent& pointer) {
        CheckFree(event);
        std::int64_t field = event.field;
        if (!m_track.empty()) field = std::max(field, m_track.back().field);
        const bool isBehind =
            pointer.isStep && !m_track.empty() && m_track.back().field == field && !m_track.back().isStep;
        if (IsOver(field) || isBehind) ++field;
        if (field >= m_session.fields)
            Refuse(event, "has to wait for field " + std::to_string(field) + ", after the last one played");
        Append(field, pointer.kind, pointer.at, pointer.isStep, pointer.pressure);
    }

    void Add(const SessionEvent& event, const StrokeEvent& stroke) {
        CheckFree(event);
        if (!m_track.empty() && (m_track.back().field > event.field || IsOver(event.field)))
            Refuse(event, "the pointer is pressed or released in field " + std::to_string(event.field) + " already");
        const auto path = stroke.curve ? CurveThrough(stroke.path) : stroke.path;
        const auto places = SpreadAlong(path, static_cast<std::size_t>(stroke.fields));
        for (std::int64_t i = 0; i <= stroke.fields; ++i)
            Append(event.field + i,
                   i == 0               ? PointerKind::Press
                   : i == stroke.fields ? PointerKind::Release
                                        : PointerKind::Move,
                   places[static_cast<std::size_t>(i)]);
        m_busyUntil = event.LastField();
        m_busyWith = event.place;
    }

    [[nodiscard]] std::vector<TimedPointerStep> Take() { return std::move(m_track); }

private:
    [[noreturn]] void Refuse(const SessionEvent& event, const std::string& reason) const {
        throw cli::Error(m_session.file.string(), event.place, reason);
    }

    // True when the pointer was pressed or released in that field, the last one so far.
    [[nodiscard]] bool IsOver(std::int64_t field) const {
        return !m_track.empty() && m_track.back().field == field && !m_track.back().isStep &&
               m_track.back().step.kind != PointerKind::Move;
    }

    void CheckFree(const SessionEvent& event) const {
        if (event.field <= m_busyUntil)
            Refuse(event,
                   "the pointer is busy with the stroke " + m_busyWith + " until field " + std::to_string(m_busyUntil));
    }

    void Append(std::int64_t field, PointerKind kind, const SessionPoint& at, bool isStep = false,
                double pressure = 1) {
        // Besides steps only a move can stand there in the same field, and the later position counts.
        if (!m_track.empty() && m_track.back().field == field && !m_track.back().isStep) m_track.pop_back();
        m_track.push_back({field,
                           {kind, static_cast<std::int32_t>(std::lround(at.x)),
                            static_cast<std::int32_t>(std::lround(at.y)), pressure},
                           isStep});
    }

    const Session& m_session;
    std::vector<TimedPointerStep> m_track;
    std::int64_t m_busyUntil = -1;
    std::string m_busyWith;
};

}  // namespace

std::vector<TimedPointerStep> PointerTrack(const Session& session) {
    TrackBuilder builder(session);
    for (const SessionEvent& event : session.events) {
        if (const auto* pointer = std::get_if<PointerEvent>(&event.what))
            builder.Add(event, *pointer);
        else if (const auto* stroke = std::get_if<StrokeEvent>(&event.what))
            builder.Add(event, *stroke);
    }
    return builder.Take();
}

}  // namespace kel
