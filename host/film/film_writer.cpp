#include "host/film/film_writer.h"

#include "host/film/film_encoder.h"

namespace kel {

bool IsFilmName(const std::filesystem::path& file) { return FormatOfFilm(file) != nullptr; }

bool KeepsAlpha(const std::filesystem::path& film) { return FormatOfFilm(film)->withAlpha != AV_PIX_FMT_NONE; }

FilmWriter::FilmWriter(const std::filesystem::path& file, const FilmSettings& settings)
    : m_encoder(std::make_unique<FilmEncoder>(file, settings)) {}
FilmWriter::~FilmWriter() = default;
FilmWriter::FilmWriter(FilmWriter&&) noexcept = default;
FilmWriter& FilmWriter::operator=(FilmWriter&&) noexcept = default;

void FilmWriter::Write(const Picture& picture) { m_encoder->Write(picture); }
void FilmWriter::Close() { m_encoder->Close(); }
void FilmWriter::Commit() { m_encoder->Commit(); }

}  // namespace kel
