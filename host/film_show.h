#pragma once

#include <cstdint>
#include <filesystem>
#include <future>
#include <optional>

#include "host/film/film_reader.h"
#include "host/film_clock.h"
#include "host/host.h"

namespace kel {

// A film on a container: shows the frame of each field, and decodes the next one meanwhile on a thread of its own.
class FilmShow {
public:
    // Throws Error for what is no film.
    FilmShow(const std::filesystem::path& file, ObjectId container, double fieldsPerSecond);
    ~FilmShow() = default;  // waits for the frame that is being decoded
    FilmShow(const FilmShow&) = delete;
    FilmShow& operator=(const FilmShow&) = delete;
    FilmShow(FilmShow&&) = delete;
    FilmShow& operator=(FilmShow&&) = delete;

    [[nodiscard]] ObjectId Container() const { return m_container; }
    [[nodiscard]] const FilmClock& Clock() const { return m_clock; }
    [[nodiscard]] double FramesPerSecond() const { return m_framesPerSecond; }
    void Change(const FilmChange& change, std::int64_t field) { m_clock.Change(change, field); }

    // Puts the field's frame on the container. Throws Error when the frame is damaged; the one before it stays then,
    // and the damaged one is not tried again until another has been shown.
    void Show(Host& host, std::int64_t field);

private:
    Picture TakeFrame(std::int64_t frame);
    void Prefetch(std::int64_t frame);

    ObjectId m_container;
    FilmReader m_reader;  // belongs to the thread that decodes while there is one
    double m_framesPerSecond;
    FilmClock m_clock;
    std::int64_t m_shown = -1;
    std::int64_t m_comingFrame = -1;
    std::future<Picture> m_coming;  // ends before the reader
};

}  // namespace kel
