#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "kel/video/sound_source.h"

namespace kel {

// Makes one sound that goes on and on of the moments of a stream's fields. Where the pictures stand, or run otherwise
// than they were taken, there is silence; the pictures lead, and where the two drift apart the sound goes to them.
//
// A field that was left out is heard all the same, unless so many are missing that the sound would have to be hurried
// after: then it is missing too. Live sound may come later than its pictures; it is waited for, and stands at their
// time. One thread at a time.
class StreamSound {
public:
    // True: the moment's track can be heard. Opens it where it is another than before.
    [[nodiscard]] bool IsThere(const SoundMoment& moment);

    // What is taken next is of another stream.
    void BeginAnew() { m_at = -1; }

    struct Piece {
        std::int64_t first = 0;          // in samples of the stream's time
        std::span<const float> samples;  // as SoundSource has them; there until the next call
    };
    // What is due with the next field, which is shown from one second of the stream's time to another.
    [[nodiscard]] Piece Take(const SoundMoment& moment, double from, double to);

private:
    [[nodiscard]] bool IsApart(const SoundMoment& moment, std::int64_t from, double tolerance);
    void Silence(std::int64_t until);
    void Follow(const SoundMoment& moment, std::int64_t from);
    void Read(std::int64_t from, std::int64_t until);

    std::shared_ptr<const SoundTrack> m_track;
    std::unique_ptr<SoundSource> m_source;  // null: nothing is heard
    std::vector<float> m_samples;           // of the piece
    std::int64_t m_at = -1;                 // of the stream: what comes next; -1: it has not begun
    std::int64_t m_sourceAt = 0;            // that of the source, while it plays
    double m_lastSeconds = 0;               // of the moment before
    int m_apart = 0;                        // pictures in a row
    bool m_isPlaying = false;
};

}  // namespace kel
