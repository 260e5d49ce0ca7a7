#include "picture_io/row_reader.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "cli/error.h"
#include "picture_io/exif.h"
#include "picture_io/picture_format.h"

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

void RowReader::Open(const std::vector<std::uint8_t>& bytes, Depths depths) {
    const FormatRow* const format = FormatOfBytes(bytes);
    if (format != nullptr && format->format == PictureFormat::Jpeg) {
        m_jpeg = std::make_unique<JpegReader>(bytes);
        m_info = m_jpeg->Info();
        if (OrientationIn(m_info.exif) == Orientation::Upright) {
            SetUpright(m_info.exif);
            return;
        }
        m_jpeg.reset();
    }
    PictureFile file = DecodePictureFile(bytes, depths);
    m_whole = std::move(file.picture);
    m_info = std::move(file.info);
}

std::int32_t RowReader::Width() const {
    return m_jpeg ? m_jpeg->Width() : std::visit([](const auto& any) { return any.width; }, m_whole);
}
std::int32_t RowReader::Height() const {
    return m_jpeg ? m_jpeg->Height() : std::visit([](const auto& any) { return any.height; }, m_whole);
}
bool RowReader::HasWords() const { return !m_jpeg && std::holds_alternative<Picture16>(m_whole); }

AnyPicture RowReader::Read(std::int32_t count) {
    const std::int32_t first = m_next;
    m_next = std::min(Height(), first + std::max(count, 1));
    if (m_jpeg) {
        Picture rows(Width(), m_next - first);
        Naming(m_name, [&] { m_jpeg->Read(rows.rgba); });
        return rows;
    }
    return std::visit(
        [&]<typename Word>(const BasicPicture<Word>& any) -> AnyPicture {
            BasicPicture<Word> rows(any.width, m_next - first);
            const auto rowWords = static_cast<std::ptrdiff_t>(any.width) * 4;
            std::copy(any.rgba.begin() + first * rowWords, any.rgba.begin() + m_next * rowWords, rows.rgba.begin());
            return rows;
        },
        m_whole);
}

}  // namespace picture_io
