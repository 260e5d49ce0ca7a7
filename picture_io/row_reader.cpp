#include "picture_io/row_reader.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "cli/error.h"
#include "picture_io/exif.h"
#include "picture_io/picture_format.h"
#include "picture_io/png_info.h"

namespace picture_io {

namespace {

template <typename Do>
void Naming(const std::string& name, Do action) {
    try {
        action();
    } catch (const cli::Error& error) {
        throw cli::Error(name, {}, error.what());
    }
}

}  // namespace

RowReader::RowReader(const std::vector<std::uint8_t>& bytes, Depths depths, std::string name)
    : m_name(std::move(name)) {
    Naming(m_name, [&] { Open(bytes, depths); });
}

bool RowReader::OpensByRows(const std::vector<std::uint8_t>& bytes, Depths depths) {
    const FormatRow* const format = FormatOfBytes(bytes);
    if (format != nullptr && format->format == PictureFormat::Jpeg) {
        m_jpeg = std::make_unique<JpegReader>(bytes);
        m_info = m_jpeg->Info();
    } else if (format != nullptr && format->format == PictureFormat::Png) {
        const bool hasWords = picture_io::HasWords(bytes);
        if (hasWords && depths != Depths::Any) return false;
        m_png = std::make_unique<PngReader>(bytes, hasWords);
        if (!m_png->GivesRows()) return false;
        m_info = ReadPngInfo(bytes);
    } else {
        return false;
    }
    if (OrientationIn(m_info.exif) != Orientation::Upright) return false;
    SetUpright(m_info.exif);
    return true;
}

void RowReader::Open(const std::vector<std::uint8_t>& bytes, Depths depths) {
    if (OpensByRows(bytes, depths)) return;
    m_jpeg.reset();
    m_png.reset();
    PictureFile file = DecodePictureFile(bytes, depths);
    m_whole = std::move(file.picture);
    m_info = std::move(file.info);
}

std::int32_t RowReader::Width() const {
    if (m_png) return m_png->Width();
    return m_jpeg ? m_jpeg->Width() : std::visit([](const auto& any) { return any.width; }, m_whole);
}
std::int32_t RowReader::Height() const {
    if (m_png) return m_png->Height();
    return m_jpeg ? m_jpeg->Height() : std::visit([](const auto& any) { return any.height; }, m_whole);
}
bool RowReader::HasWords() const {
    if (m_png) return m_png->HasWords();
    return !m_jpeg && std::holds_alternative<Picture16>(m_whole);
}

template <typename Word>
AnyPicture RowReader::WholeRows(const BasicPicture<Word>& whole, std::int32_t first) const {
    BasicPicture<Word> rows(whole.width, m_next - first);
    const auto rowWords = static_cast<std::ptrdiff_t>(whole.width) * 4;
    std::copy(whole.rgba.begin() + first * rowWords, whole.rgba.begin() + m_next * rowWords, rows.rgba.begin());
    return rows;
}

AnyPicture RowReader::Read(std::int32_t count) {
    const std::int32_t first = m_next;
    m_next = std::min(Height(), first + std::max(count, 1));
    if (!m_jpeg && !m_png) return std::visit([&](const auto& whole) { return WholeRows(whole, first); }, m_whole);
    const auto read = [&](auto rows, auto& reader) -> AnyPicture {
        Naming(m_name, [&] { reader.Read(rows.rgba); });
        return rows;
    };
    const std::int32_t height = m_next - first;
    if (m_jpeg) return read(Picture(Width(), height), *m_jpeg);
    return m_png->HasWords() ? read(Picture16(Width(), height), *m_png) : read(Picture(Width(), height), *m_png);
}

}  // namespace picture_io
