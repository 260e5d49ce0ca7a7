#include "picture_io/row_writer.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "picture_io/channels.h"

namespace picture_io {

RowWriter::Guess RowWriter::FirstGuess(const FormatRow& format, const WriteOptions& options) {
    return {options.followsInfo && options.info.isGrey,
            !format.hasAlpha || (options.followsInfo && !options.info.hasAlpha)};
}

RowWriter::RowWriter(const FormatRow& format, std::int32_t width, std::int32_t height, WriteOptions options,
                     Guess guess)
    : m_format(format), m_width(width), m_height(height), m_options(std::move(options)), m_guess(guess) {
    RequireSides(width, height);
}

void RowWriter::Begin(const AnyPicture& rows) {
    RequireFitting(m_format, std::holds_alternative<Picture16>(rows));
    if (!FitsProfile(m_options.info.profile, m_guess.isGrey)) m_options.info.profile.clear();
    if (m_format.format == PictureFormat::Jpeg) m_jpeg.emplace(m_width, m_height, m_options, m_guess.isGrey);
    if (m_format.format != PictureFormat::Png) return;
    const Channels channels = m_guess.isGrey ? (m_guess.isOpaque ? Channels::Grey : Channels::GreyAlpha)
                                             : (m_guess.isOpaque ? Channels::RGB : Channels::RGBA);
    const PngShape shape{m_width, m_height, channels, std::holds_alternative<Picture16>(rows)};
    m_png.emplace(shape, m_options.info, m_options.compression);
}

void RowWriter::Gather(const AnyPicture& rows) {
    std::visit(
        [&]<typename Word>(const BasicPicture<Word>& any) {
            if (!m_whole) m_whole = BasicPicture<Word>(m_width, m_height);
            auto& whole = std::get<BasicPicture<Word>>(*m_whole);
            std::ranges::copy(any.rgba, whole.rgba.begin() + std::ptrdiff_t{4} * m_width * m_gathered);
            m_gathered += any.height;
        },
        rows);
}

bool RowWriter::Write(const AnyPicture& rows) {
    if (m_format.format != PictureFormat::Png && m_format.format != PictureFormat::Jpeg) {
        Gather(rows);
        return true;
    }
    const bool looksAtAlpha = m_format.hasAlpha && m_guess.isOpaque;
    const Channels fitting =
        std::visit([&](const auto& any) { return FittingChannels(any, m_guess.isGrey, looksAtAlpha); }, rows);
    const bool isGrey = fitting == Channels::Grey || fitting == Channels::GreyAlpha;
    const bool isOpaque = !looksAtAlpha || fitting == Channels::Grey || fitting == Channels::RGB;
    if ((m_guess.isGrey && !isGrey) || !isOpaque) {
        m_guess = {m_guess.isGrey && isGrey, m_guess.isOpaque && isOpaque};
        return false;
    }
    if (!m_png && !m_jpeg) Begin(rows);
    if (m_jpeg)
        m_jpeg->Write(std::get<Picture>(rows));
    else
        std::visit([this](const auto& any) { m_png->Write(any); }, rows);
    return true;
}

std::vector<std::uint8_t> RowWriter::Finish() {
    if (m_jpeg) return m_jpeg->Finish();
    if (m_png) return m_png->Finish();
    return EncodePictureFile(m_whole.value(), m_format, m_options);
}

}  // namespace picture_io
