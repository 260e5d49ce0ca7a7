#include "picture_io/png_reader.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <bit>
#include <csetjmp>
#include <cstddef>
#include <cstring>
#include <new>
#include <utility>

#include "picture_io/png_header.h"

namespace picture_io {
namespace {

constexpr bool swapsBytes = std::endian::native == std::endian::little;  // words in the file begin with the high byte

// The library's simplified interface offers words as linear light only, and no rows, so this is its full one. It is
// left by a long jump, so between setjmp and the jump no C++ object may come to be: the functions that call setjmp work
// on what their callers own.
struct Failure {
    std::array<char, 128> reason{};
};

[[noreturn]] void LeaveLibrary(png_structp png, png_const_charp reason) {
    auto* failure = static_cast<Failure*>(png_get_error_ptr(png));
    std::strncpy(failure->reason.data(), reason, failure->reason.size() - 1);
    std::longjmp(*png_set_longjmp_fn(png, std::longjmp, sizeof(std::jmp_buf)), 1);
}

void IgnoreWarning(png_structp, png_const_charp) {}

[[noreturn]] void Refuse(const Failure& failure) { RefusePng(failure.reason.data()); }

struct Source {
    const std::uint8_t* next;
    std::size_t left;
};

void TakeBytes(png_structp png, png_bytep target, std::size_t count) {
    auto* source = static_cast<Source*>(png_get_io_ptr(png));
    if (count > source->left) png_error(png, "ends too early");
    std::memcpy(target, source->next, count);
    source->next += count;
    source->left -= count;
}

struct Reader {
    Failure failure;
    Source source;
    png_structp png;
    png_infop info;

    explicit Reader(const std::vector<std::uint8_t>& bytes)
        : source{bytes.data(), bytes.size()},
          png(png_create_read_struct(PNG_LIBPNG_VER_STRING, &failure, LeaveLibrary, IgnoreWarning)),
          info(png != nullptr ? png_create_info_struct(png) : nullptr) {}
    ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    Reader(Reader&&) = delete;
    Reader& operator=(Reader&&) = delete;
};

// Every pixel comes out as four words of this machine, whatever the file holds.
void AskForWords(Reader& reader) {
    png_set_expand_16(reader.png);
    png_set_gray_to_rgb(reader.png);
    png_set_add_alpha(reader.png, 0xFFFF, PNG_FILLER_AFTER);
    if (swapsBytes) png_set_swap(reader.png);
}

// Or as four bytes, of a file that has no more.
void AskForBytes(Reader& reader) {
    png_set_expand(reader.png);
    png_set_gray_to_rgb(reader.png);
    png_set_add_alpha(reader.png, 0xFF, PNG_FILLER_AFTER);
}

bool ReadHeader(Reader& reader, bool hasWords) {
    if (setjmp(png_jmpbuf(reader.png)) != 0) return false;
    png_set_read_fn(reader.png, &reader.source, TakeBytes);
    png_read_info(reader.png, reader.info);
    png_set_alpha_mode_fixed(reader.png, PNG_ALPHA_PNG, PNG_DEFAULT_sRGB);
    hasWords ? AskForWords(reader) : AskForBytes(reader);
    png_set_interlace_handling(reader.png);
    png_read_update_info(reader.png, reader.info);
    return true;
}

bool ReadNextRows(Reader& reader, png_bytep rgba, std::size_t rowBytes, std::size_t count) {
    if (setjmp(png_jmpbuf(reader.png)) != 0) return false;
    for (std::size_t row = 0; row < count; ++row) png_read_row(reader.png, rgba + row * rowBytes, nullptr);
    return true;
}

// Behind the last row of words the file must end well, as `DecodePng16` wants it.
bool ReadEnd(Reader& reader) {
    if (setjmp(png_jmpbuf(reader.png)) != 0) return false;
    png_read_end(reader.png, nullptr);
    return true;
}

bool ReadRows(Reader& reader, png_bytepp rows) {
    if (setjmp(png_jmpbuf(reader.png)) != 0) return false;
    png_read_image(reader.png, rows);
    png_read_end(reader.png, nullptr);
    return true;
}

std::vector<png_bytep> RowsOf(std::vector<std::uint16_t>& words, std::int32_t height) {
    std::vector<png_bytep> rows;
    rows.reserve(static_cast<std::size_t>(height));
    const std::size_t rowWords = words.size() / static_cast<std::size_t>(height);
    for (std::size_t at = 0; at < words.size(); at += rowWords)
        rows.push_back(reinterpret_cast<png_bytep>(words.data() + at));
    return rows;
}

}  // namespace

struct PngReader::State {
    Reader reader;
    bool hasWords;
    std::size_t rowsLeft = 0;
};

PngReader::PngReader(const std::vector<std::uint8_t>& bytes, bool hasWords)
    : m_state(new State{Reader(bytes), hasWords}) {
    RefuseTruncatedPng(bytes);
    Reader& reader = m_state->reader;
    if (reader.info == nullptr) throw std::bad_alloc();
    if (!ReadHeader(reader, hasWords)) Refuse(reader.failure);
    RequireSides(Width(), Height());
    m_state->rowsLeft = static_cast<std::size_t>(Height());
}
PngReader::~PngReader() = default;

bool PngReader::GivesRows() const {
    const auto& [png, info] = std::pair(m_state->reader.png, m_state->reader.info);
    if (png_get_interlace_type(png, info) != PNG_INTERLACE_NONE) return false;
    if (m_state->hasWords) return true;
    const auto says = [png = png, info = info](png_uint_32 chunk) { return png_get_valid(png, info, chunk) != 0; };
    const bool isPlain = png_get_color_type(png, info) != PNG_COLOR_TYPE_PALETTE && !says(PNG_INFO_tRNS);
    constexpr png_fixed_point usualGamma = 45455;
    png_fixed_point gamma = usualGamma;
    png_get_gAMA_fixed(png, info, &gamma);
    return isPlain && gamma == usualGamma;
}

std::int32_t PngReader::Width() const {
    constexpr png_uint_32 tooLarge = largestPictureSide + 1;
    return static_cast<std::int32_t>(
        std::min(png_get_image_width(m_state->reader.png, m_state->reader.info), tooLarge));
}
std::int32_t PngReader::Height() const {
    constexpr png_uint_32 tooLarge = largestPictureSide + 1;
    return static_cast<std::int32_t>(
        std::min(png_get_image_height(m_state->reader.png, m_state->reader.info), tooLarge));
}
bool PngReader::HasWords() const { return m_state->hasWords; }

void PngReader::ReadBytes(std::uint8_t* rgba, std::size_t bytes) {
    const std::size_t rowBytes = (m_state->hasWords ? 8 : 4) * static_cast<std::size_t>(Width());
    const std::size_t rows = std::min(bytes / rowBytes, m_state->rowsLeft);
    m_state->rowsLeft -= rows;
    if (!ReadNextRows(m_state->reader, rgba, rowBytes, rows)) Refuse(m_state->reader.failure);
    if (m_state->hasWords && m_state->rowsLeft == 0 && !ReadEnd(m_state->reader)) Refuse(m_state->reader.failure);
}

void PngReader::Read(std::span<std::uint8_t> rgba) { ReadBytes(rgba.data(), rgba.size()); }
void PngReader::Read(std::span<std::uint16_t> rgba) {
    ReadBytes(reinterpret_cast<std::uint8_t*>(rgba.data()), rgba.size_bytes());
}

bool HasWords(const std::vector<std::uint8_t>& bytes) {
    const auto header = ReadPngHeader(bytes);
    return header && header->bits == 16;
}

Picture16 DecodePng16(const std::vector<std::uint8_t>& bytes) {
    RefuseTruncatedPng(bytes);
    Reader reader(bytes);
    if (reader.info == nullptr) throw std::bad_alloc();
    if (!ReadHeader(reader, true)) Refuse(reader.failure);
    constexpr png_uint_32 tooLarge = largestPictureSide + 1;
    Picture16 picture(static_cast<std::int32_t>(std::min(png_get_image_width(reader.png, reader.info), tooLarge)),
                      static_cast<std::int32_t>(std::min(png_get_image_height(reader.png, reader.info), tooLarge)));
    std::vector<png_bytep> rows = RowsOf(picture.rgba, picture.height);
    if (!ReadRows(reader, rows.data())) Refuse(reader.failure);
    return picture;
}

}  // namespace picture_io
